#include "http/mirel_http_socket.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include "common/mirel_common_builder.h"
#include "common/mirel_common_console.h"
#include "http/mirel_http_response.h"

namespace {

constexpr unsigned long kChunk = 1024;
constexpr int kWaitSeconds = 5;
/// Of what a response announces, room for this many bytes is made before they come; it costs nothing until
/// they do.
constexpr unsigned long kTrusted = 256UL << 20;

bool failed(const char* message) {
  complain(message);
  return false;
}

/// `count` bytes of both texts as if they were one; in `joined` when they are of both.
const char* chunkAt(unsigned long offset, unsigned long count, const mirel_string& head,
                    const mirel_string& body, char* joined) {
  if (offset >= head.length()) {
    return body.c_str() + (offset - head.length());
  }
  const unsigned long first = std::min(count, head.length() - offset);
  if (first == count) {
    return head.c_str() + offset;
  }
  memcpy(joined, head.c_str() + offset, first);
  memcpy(joined + first, body.c_str(), count - first);
  return joined;
}

}  // namespace

bool Socket::open(const mirel_string& host, unsigned long port) {
  if (sqloPdbCreateSocket(&m_socket, 0) != 0) {
    return failed("failed to create socket");
  }
  showWork("resolving the server's name");
  SqloHostAddress address = {};
  if (sqloPdbTcpIpResolveHostName(host.c_str(), &address, 10, 1) != 0) {
    return failed("failed to get hostname");
  }
  if (sqloPdbInitNodeAddrHndl(0, &m_addr, &address, static_cast<unsigned int>(port)) != 0) {
    return failed("failed to init node addr handle");
  }
  showWork("connecting to the server");
  if (sqloPdbConnectSocket(m_socket, &m_addr) != 0) {
    return failed("failed to connect");
  }
  return true;
}

bool Socket::send(const mirel_string& head, const mirel_string& body) {
  showWork("sending to the server");
  const unsigned long total = head.length() + body.length();
  unsigned long offset = 0;
  while (offset < total) {
    const unsigned long count = std::min(kChunk, total - offset);
    char joined[kChunk];
    const char* const chunk = chunkAt(offset, count, head, body, joined);
    unsigned int sent = 0;
    const unsigned int code = sqloPdbSendBuffer(m_socket, chunk, static_cast<unsigned int>(count), &sent);
    // A success that takes nothing would be repeated for ever.
    if (code != 0 || sent == 0) {
      hideWork();
      std::cout << "failed to send: " << mirel_string(chunk, count) << std::endl;
      return false;
    }
    offset += sent;
  }
  return true;
}

mirel_string Socket::recv() {
  showWork("waiting for the server");
  mirel_string_builder text;
  HttpResponse response;
  char buffer[kChunk + 1];
  for (bool more = true, announced = false; more;) {
    unsigned int received = 0;
    const unsigned int code = sqloPdbRecvBuffer(m_socket, buffer, kChunk, &received, kWaitSeconds, 0);
    const unsigned long count = response.receive(buffer, std::min<unsigned long>(received, kChunk));
    text.append(buffer, strnlen(buffer, count));
    // A wait that ran out is no error and brought nothing. Errors would come again for ever.
    more = !response.complete() && code == 0;
    if (!announced && response.announced() > 0) {
      text.expect(std::min(response.announced(), kTrusted));
      announced = true;
    }
  }
  return text.take();
}

bool Socket::close() {
  return sqloPdbCloseSocket(m_socket) == 0 || failed("failed to close socket");
}
