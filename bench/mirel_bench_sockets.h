#pragma once
/// Bare socket loops, in pieces of 1,024 bytes.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

inline int connected(const sockaddr* address) {
  const int peer = socket(AF_INET, SOCK_STREAM, 0);
  return connect(peer, address, sizeof(sockaddr_in)) == 0 ? peer : -1;
}

inline void sendAll(int peer, std::string_view text) {
  for (std::size_t offset = 0; offset < text.size(); offset += 1024) {
    send(peer, text.data() + offset, std::min<std::size_t>(1024, text.size() - offset), MSG_NOSIGNAL);
  }
}

/// Hands out every piece until the peer closes; how much it was.
template <class Take>
unsigned long receiveAll(int peer, const Take& take) {
  char piece[1024];
  unsigned long length = 0;
  for (ssize_t count = 1; count > 0; length += static_cast<unsigned long>(count)) {
    count = std::max<ssize_t>(0, recv(peer, piece, sizeof piece, 0));
    take(piece, static_cast<unsigned long>(count));
  }
  close(peer);
  return length;
}
