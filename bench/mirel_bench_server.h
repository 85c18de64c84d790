#pragma once
/// Who receives documents: nginx, when bench/run has started it on MIREL_BENCH_PORT, else a sink of our own.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <utility>

/// Bytes sent and not received yet. Within one machine the system lets megabytes pile up, the more the longer
/// an answer is, and they leave the processor's caches: that would be the system's growth and not the
/// receiver's.
inline constexpr int kUnderWay = 1 << 16;
inline constexpr char kReceipt[] = "HTTP/1.1 201 Created\r\nContent-Length: 0\r\n\r\n";

/// Takes connections one after the other, reads `expected` bytes of body from each and answers.
class Sink {
 public:
  explicit Sink(unsigned long expected, std::string head = kReceipt, unsigned long body = 0)
      : m_expected(expected),
        m_head(std::move(head)),
        m_body(body),
        m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
    socklen_t length = sizeof m_address;
    m_address.sin_family = AF_INET;
    m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(m_listener, address(), length) != 0 || listen(m_listener, 8) != 0) {
      std::abort();
    }
    getsockname(m_listener, address(), &length);
    m_thread = std::thread([this] { serve(); });
  }
  ~Sink() {
    shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    close(m_listener);
  }
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  unsigned short port() const { return ntohs(m_address.sin_port); }
  sockaddr* address() { return reinterpret_cast<sockaddr*>(&m_address); }

 private:
  void serve() {
    for (int peer = accept(m_listener, nullptr, nullptr); peer >= 0;
         peer = accept(m_listener, nullptr, nullptr)) {
      setsockopt(peer, SOL_SOCKET, SO_SNDBUF, &kUnderWay, sizeof kUnderWay);
      drain(peer);
      send(peer, m_head.data(), m_head.size(), MSG_NOSIGNAL);
      sendBody(peer);
      close(peer);
    }
  }

  void sendBody(int peer) const {
    static const std::string piece(1 << 16, 'x');
    ssize_t sent = 0;
    for (unsigned long left = m_body; left > 0 && sent >= 0; left -= static_cast<unsigned long>(sent)) {
      sent = send(peer, piece.data(), std::min(left, piece.size()), MSG_NOSIGNAL);
    }
  }

  void drain(int peer) const {
    static char buffer[1 << 16];
    ssize_t count = recv(peer, buffer, sizeof buffer, 0);
    const void* body = count > 0 ? memmem(buffer, static_cast<size_t>(count), "\r\n\r\n", 4) : nullptr;
    const long head = body == nullptr ? 0 : static_cast<const char*>(body) + 4 - buffer;
    for (long left = static_cast<long>(m_expected) + head - count; left > 0 && count > 0; left -= count) {
      count = recv(peer, buffer, sizeof buffer, 0);
    }
  }

  const unsigned long m_expected;
  const std::string m_head;
  const unsigned long m_body;
  const int m_listener;
  sockaddr_in m_address = {};
  std::thread m_thread;
};

/// Answers with a body of so many bytes.
inline Sink respondingSink(unsigned long length) {
  return Sink(0, "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n", length);
}

class Server {
 public:
  explicit Server(unsigned long expected) {
    if (const char* port = getenv("MIREL_BENCH_PORT")) {
      m_address.sin_family = AF_INET;
      m_address.sin_port = htons(static_cast<unsigned short>(atoi(port)));
      m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    } else {
      m_sink.emplace(expected);
      memcpy(&m_address, m_sink->address(), sizeof m_address);
    }
  }
  unsigned short port() const { return ntohs(m_address.sin_port); }
  sockaddr* address() { return reinterpret_cast<sockaddr*>(&m_address); }

 private:
  sockaddr_in m_address = {};
  std::optional<Sink> m_sink;
};
