/// Posting a document, against a bare loop of 1,024-byte sends to the same server; collecting a response.

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "http/mirel_http_client.h"

namespace {

constexpr char kReceipt[] = "HTTP/1.1 201 Created\r\nContent-Length: 0\r\n\r\n";

/// Takes connections one after the other, reads `expected` bytes of body from each and sends the answer.
class Sink {
 public:
  explicit Sink(unsigned long expected, std::string answer = kReceipt)
      : m_expected(expected), m_answer(std::move(answer)), m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
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
      drain(peer);
      send(peer, m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
      close(peer);
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
  const std::string m_answer;
  const int m_listener;
  sockaddr_in m_address = {};
  std::thread m_thread;
};

/// Where documents go: bench/run has started nginx there. Otherwise to a sink of our own.
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

void post(benchmark::State& state) {
  const mirel_string document(std::string(static_cast<unsigned long>(state.range(0)), 'x').c_str());
  Server server(document.length());
  HttpClient client("127.0.0.1", server.port());
  for (auto round : state) {
    if (client.post("/tarn", document).find(" 201 ", 0) == mirel_string::npos) {
      state.SkipWithError("no receipt");
      break;
    }
  }
}

void bareSends(benchmark::State& state) {
  const std::string document(static_cast<unsigned long>(state.range(0)), 'x');
  const std::string request = "POST /tarn HTTP/1.1\r\nHost: h\r\nConnection: close\r\nContent-Length: " +
                              std::to_string(document.size()) + "\r\n\r\n" + document;
  Server server(document.size());
  char answer[1024];
  for (auto round : state) {
    const int peer = socket(AF_INET, SOCK_STREAM, 0);
    if (connect(peer, server.address(), sizeof(sockaddr_in)) != 0) {
      state.SkipWithError("no connection");
    }
    for (std::size_t offset = 0; offset < request.size(); offset += 1024) {
      send(peer, request.data() + offset, std::min<std::size_t>(1024, request.size() - offset), MSG_NOSIGNAL);
    }
    while (recv(peer, answer, sizeof answer, 0) > 0) {
    }
    close(peer);
  }
}

void collectResponse(benchmark::State& state) {
  const std::string length = std::to_string(state.range(0));
  Sink sink(0, "HTTP/1.1 200 OK\r\nContent-Length: " + length + "\r\n\r\n" +
                   std::string(static_cast<unsigned long>(state.range(0)), 'x'));
  HttpClient client("127.0.0.1", sink.port());
  for (auto round : state) {
    if (client.get("/config").length() != static_cast<unsigned long>(state.range(0))) {
      state.SkipWithError("the response is not whole");
      break;
    }
  }
}

constexpr long kDocument = 50'000'000;
constexpr int kTimes = 3;  // the server keeps every one of them

}  // namespace

BENCHMARK(bareSends)->Arg(10'000)->UseRealTime();
BENCHMARK(post)->Arg(10'000)->UseRealTime();
BENCHMARK(bareSends)->Arg(kDocument)->Iterations(kTimes)->UseRealTime();
BENCHMARK(post)->Arg(kDocument)->Iterations(kTimes)->UseRealTime();
BENCHMARK(collectResponse)->RangeMultiplier(10)->Range(1'000, 100'000'000)->UseRealTime();
