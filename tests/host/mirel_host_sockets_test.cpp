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

static bool ipv6Off = false;

extern "C" int socket(int domain, int type, int protocol) noexcept {
  static const auto real = reinterpret_cast<decltype(&socket)>(dlsym(RTLD_NEXT, "socket"));
  errno = EAFNOSUPPORT;
  return ipv6Off && domain == AF_INET6 ? -1 : real(domain, type, protocol);
}

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
  ~HostSockets() override { close(listener), close(peer), sqloPdbCommFncTerm(); }

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

  std::pair<unsigned int, std::string> receive(int wait = 5) {
    unsigned int received = 99;
    char buffer[1024];
    const unsigned int status = sqloPdbRecvBuffer(handle, buffer, sizeof buffer, &received, wait, 0);
    return {status, std::string(buffer, received)};
  }

  int listener = -1, peer = -1, handle = 0;
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
    std::string host, listener;
    bool withoutIpv6;
    unsigned int outcome;
  } rows[] = {
      {"127.0.0.1", "127.0.0.1", false, 0},
      {"::1", "::1", false, 0},
      {"::1,127.0.0.1", "127.0.0.1", false, 0},
      {"127.0.0.1,::1", "::1", false, 0},
      {"::1,127.0.0.1", "127.0.0.1", true, 0},
      {"::1", "::1", true, EAFNOSUPPORT},
      {loopback(1, 110), "127.0.1.102", false, 0},
      {loopback(1, 110), "127.0.1.103", false, ECONNREFUSED},
      {loopback(1, 101) + "," + loopback(1, 102), "127.0.1.102", false, 0},
  };
  for (const auto& row : rows) {
    listenOn(row.listener.c_str());
    ipv6Off = row.withoutIpv6;
    EXPECT_EQ(row.outcome, connectTo(row.host)) << row.host << " -> " << row.listener << ipv6Off;
    ipv6Off = false;
  }
}

TEST_F(HostSockets, WaitOutlastsSignals) {
  listenOn("127.0.0.1");
  EXPECT_EQ(0U, connectTo("127.0.0.1"));
  signal(SIGALRM, [](int) {});
  const itimerval often{{0, 1000}, {0, 1000}}, never{};
  setitimer(ITIMER_REAL, &often, nullptr);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(std::pair(0U, std::string()), receive(1));
  EXPECT_LE(std::chrono::seconds(1), std::chrono::steady_clock::now() - start);
  setitimer(ITIMER_REAL, &never, nullptr);
}

TEST_F(HostSockets, PeerThatClosesOrResets) {
  listenOn("127.0.0.1");
  for (const auto& [abort, outcome] : {std::pair(0, SQLO_PDB_PEER_CLOSED), {1, unsigned{ECONNRESET}}}) {
    EXPECT_EQ(0U, connectTo("127.0.0.1"));
    peer = accept(listener, nullptr, nullptr);
    const linger now{abort, 0};
    setsockopt(peer, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    send(peer, "half", 4, 0);
    close(peer);
    EXPECT_EQ(std::pair(0U, std::string("half")), receive()) << abort;
    EXPECT_EQ(std::pair(outcome, std::string()), receive()) << abort;
  }
  unsigned int sent = 99;
  EXPECT_EQ(unsigned{EPIPE}, sqloPdbSendBuffer(handle, "x", 1, &sent));
}

TEST_F(HostSockets, RefuseWhatCannotBeMeant) {
  SqloHostAddress address;
  SqloNodeAddress node;
  EXPECT_NE(0U, sqloPdbTcpIpResolveHostName(nullptr, &address, 10, 1));
  EXPECT_EQ(0U, sqloPdbTcpIpResolveHostName("127.0.0.1", &address, 10, 1));
  for (const unsigned int port : {0U, 65536U, 65536U + 80U}) {
    EXPECT_NE(0U, sqloPdbInitNodeAddrHndl(0, &node, &address, port)) << port;
  }
  sqloPdbCreateSocket(&handle, 0);
  EXPECT_EQ(0U, sqloPdbCloseSocket(handle));
  for (const int wrong : {-1, 0, handle}) {
    unsigned int count = 99;
    EXPECT_EQ(unsigned{EBADF}, sqloPdbConnectSocket(wrong, &node)) << wrong;
    EXPECT_EQ(unsigned{EBADF}, sqloPdbSendBuffer(wrong, "x", 1, &count)) << wrong;
    EXPECT_EQ(unsigned{EBADF}, sqloPdbRecvBuffer(wrong, &address, 1, &count, 0, 0)) << wrong;
    EXPECT_EQ(unsigned{EBADF}, sqloPdbCloseSocket(wrong)) << wrong;
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
