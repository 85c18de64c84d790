#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <sstream>

#include "platform/sockets.h"

// The name "a,b" has the addresses of a, then those of b.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** found) {
  static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
  std::istringstream parts(name);
  int status = 0;
  for (std::string part; status == 0 && std::getline(parts, part, ',');) {
    status = real(part.c_str(), service, hints, found);
    while (status == 0 && *found != nullptr) {
      found = &(*found)->ai_next;
    }
  }
  return status;
}

namespace {

struct HostSockets : testing::Test {
  ~HostSockets() override { close(listener), sqloPdbCommFncTerm(); }

  void listenOn(const char* address) {
    addrinfo* name = nullptr;
    getaddrinfo(address, "0", nullptr, &name);
    close(listener);
    listener = socket(name->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bind(listener, name->ai_addr, name->ai_addrlen);
    listen(listener, 8);
    freeaddrinfo(name);
  }

  unsigned int connectTo(const std::string& host) {
    sockaddr_in6 bound{};
    socklen_t length = sizeof bound;
    getsockname(listener, reinterpret_cast<sockaddr*>(&bound), &length);
    SqloHostAddress address;
    SqloNodeAddress node;
    EXPECT_EQ(0U, sqloPdbCreateSocket(&handle, 0));
    EXPECT_EQ(0U, sqloPdbTcpIpResolveHostName(host.c_str(), &address, 10, 1));
    EXPECT_EQ(0U, sqloPdbInitNodeAddrHndl(0, &node, &address, ntohs(bound.sin6_port)));
    return sqloPdbConnectSocket(handle, &node);
  }

  int listener = -1, handle = 0;
};

std::string loopback(int from, int to) {
  std::ostringstream names;
  for (int i = from; i <= to; ++i) {
    names << "127.0.1." << i << (i < to ? "," : "");
  }
  return names.str();
}

TEST_F(HostSockets, TryEveryAddressInOrder) {
  const struct {
    std::string host;
    const char* listener;
    unsigned int outcome;
  } rows[] = {
      {"::1", "::1", 0},
      {"::1,127.0.0.1", "127.0.0.1", 0},
      {"127.0.0.1,::1", "::1", 0},
      {loopback(1, 110), "127.0.1.102", 0},
      {loopback(1, 110), "127.0.1.103", ECONNREFUSED},
      {loopback(1, 101) + "," + loopback(1, 102), "127.0.1.102", 0},
  };
  for (const auto& row : rows) {
    listenOn(row.listener);
    EXPECT_EQ(row.outcome, connectTo(row.host)) << row.host << " -> " << row.listener;
  }
}

TEST_F(HostSockets, WaitOutlastsSignals) {
  listenOn("127.0.0.1");
  EXPECT_EQ(0U, connectTo("127.0.0.1"));
  signal(SIGALRM, [](int) {});
  const itimerval often{{0, 1000}, {0, 1000}}, never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  const auto start = std::chrono::steady_clock::now();
  unsigned int received = 99;
  char byte;
  EXPECT_EQ(0U, sqloPdbRecvBuffer(handle, &byte, 1, &received, 1, 0));
  EXPECT_EQ(0U, received);
  EXPECT_LE(std::chrono::seconds(1), std::chrono::steady_clock::now() - start);
  setitimer(ITIMER_REAL, &never, nullptr);
}

TEST_F(HostSockets, EveryByteComesOnceAndNoneFromAnEarlierConnection) {
  std::string sent(40'000, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i)  // no two parts of a power of two are alike
    sent[i] = static_cast<char>(i % 251);
  listenOn("127.0.0.1");
  for (const unsigned int size : {1U, 1000U, 1'000'000U}) {
    EXPECT_EQ(0U, connectTo("127.0.0.1"));
    const int peer = accept(listener, nullptr, nullptr);
    EXPECT_EQ(static_cast<ssize_t>(sent.size()), send(peer, sent.data(), sent.size(), 0));
    close(peer);
    std::string text, piece(size, '\0');
    unsigned int received = 0, code = 0;
    while ((code = sqloPdbRecvBuffer(handle, piece.data(), size, &received, 1, 0)) == 0 && received > 0) {
      text.append(piece, 0, received);
    }
    EXPECT_EQ(SQLO_PDB_PEER_CLOSED, code);
    EXPECT_EQ(0U, received);
    EXPECT_TRUE(text == sent) << text.size();
    EXPECT_EQ(0U, sqloPdbCloseSocket(handle));
    EXPECT_EQ(0U, connectTo("127.0.0.1"));  // one that is left before its end
    const int other = accept(listener, nullptr, nullptr);
    EXPECT_EQ(5, send(other, "other", 5, 0));
    EXPECT_EQ(0U, sqloPdbRecvBuffer(handle, piece.data(), 1, &received, 1, 0));
    EXPECT_EQ(0U, sqloPdbCloseSocket(handle));
    close(other);
  }
}

TEST_F(HostSockets, LeftOverSocketsEndWithTheLayerAndNeverReachACommand) {
  const int next = open("/dev/null", O_RDONLY);
  close(next);
  sqloPdbCreateSocket(&handle, 0);
  EXPECT_EQ(FD_CLOEXEC, fcntl(next, F_GETFD));
  sqloPdbCommFncTerm();
  EXPECT_EQ(-1, fcntl(next, F_GETFD));
}

}  // namespace
