// TCP on Linux. Error codes are the values of errno(3).
//
// An endpoint is a dual-stack socket: IPv4 addresses are kept and reached in their IPv6 form, so one list
// and one kind of socket serve both families. The descriptor never blocks by itself; every wait is a
// poll(2) that knows its deadline, so interrupted calls resume and descriptors of any number will do.

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstring>

#include "platform/host/services/mirel_host_descriptor.h"
#include "platform/sockets.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// Shared by all addresses of a host, so that one that swallows packets leaves time for the next.
constexpr seconds kConnectLimit{30};

// A peer that vanished ends the connection after two minutes, whether it idles or has data under way; so
// does one that is alive but takes nothing.
constexpr int kKeepaliveIdleSeconds = 60;
constexpr int kKeepaliveIntervalSeconds = 10;
constexpr int kKeepaliveProbes = 6;
constexpr int kUnacknowledgedMilliseconds = 120'000;

/// An IPv6 address, or an IPv4 address mapped into IPv6 (::ffff:192.0.2.1).
struct Address {
  in6_addr ip;
  std::uint32_t scope;
};

constexpr std::size_t kAddressLimit = (sizeof(SqloHostAddress) - sizeof(std::uint32_t)) / sizeof(Address);

struct AddressList {
  std::uint32_t count;
  std::array<Address, kAddressLimit> addresses;
};

struct Node {
  AddressList host;
  std::uint32_t port;
};

static_assert(sizeof(AddressList) <= sizeof(SqloHostAddress) && sizeof(Node) <= sizeof(SqloNodeAddress));

template <class Content, class Record>
Content contentOf(const Record& record) {
  Content content;
  std::memcpy(&content, record.bytes, sizeof content);
  return content;
}

template <class Record, class Content>
void store(Record* record, const Content& content) {
  std::memcpy(record->bytes, &content, sizeof content);
}

/// Handles are given once and never again, so a stale one finds nothing. The tables are fixed: opening a
/// socket needs no memory of ours.
struct Endpoint {
  int handle;  ///< 0: the place is free
  int descriptor;
  std::size_t arrived;  ///< bytes that wait in `arrivals`,
  std::size_t taken;    ///< and how many of them were handed out
};
std::array<Endpoint, 64> endpoints;
/// By place of the endpoint. The system is asked for more than callers take at a time, since a call costs as
/// much as a few kilobytes do.
std::array<std::array<char, 16384>, endpoints.size()> arrivals;
int lastHandle = 0;

Endpoint* find(int handle) {
  const auto place = std::find_if(endpoints.begin(), endpoints.end(),
                                  [handle](const Endpoint& endpoint) { return endpoint.handle == handle; });
  return place == endpoints.end() ? nullptr : &*place;
}

Endpoint* findOpen(int handle) {
  return handle == 0 ? nullptr : find(handle);
}

unsigned int lastError() {
  return static_cast<unsigned int>(errno);
}

void setOption(int descriptor, int level, int name, int value) {
  setsockopt(descriptor, level, name, &value, sizeof value);
}

/// A new socket, or -1. Where IPv6 is switched off it is one for IPv4 alone.
int openDescriptor() {
  constexpr int type = SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC;
  int descriptor = socket(AF_INET6, type, 0);
  if (descriptor >= 0) {
    setOption(descriptor, IPPROTO_IPV6, IPV6_V6ONLY, 0);
  } else {
    descriptor = socket(AF_INET, type, 0);
  }
  if (descriptor >= 0) {
    setOption(descriptor, SOL_SOCKET, SO_KEEPALIVE, 1);
    setOption(descriptor, IPPROTO_TCP, TCP_KEEPIDLE, kKeepaliveIdleSeconds);
    setOption(descriptor, IPPROTO_TCP, TCP_KEEPINTVL, kKeepaliveIntervalSeconds);
    setOption(descriptor, IPPROTO_TCP, TCP_KEEPCNT, kKeepaliveProbes);
    setOption(descriptor, IPPROTO_TCP, TCP_USER_TIMEOUT, kUnacknowledgedMilliseconds);
  }
  return descriptor;
}

/// Waits until the socket can do what `events` says, or has failed: 0. At the deadline: ETIMEDOUT.
int waitFor(int descriptor, short events, Clock::time_point deadline) {
  pollfd entry{descriptor, events, 0};
  for (;;) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now()).count();
    const int ready = poll(&entry, 1, static_cast<int>(std::clamp<long long>(left, 0, INT_MAX)));
    if (ready > 0) {
      return 0;
    }
    if (ready < 0 && errno != EINTR) {
      return errno;
    }
    if (Clock::now() >= deadline) {
      return ETIMEDOUT;
    }
  }
}

int domainOf(int descriptor) {
  int domain = AF_INET6;
  socklen_t length = sizeof domain;
  getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &length);
  return domain;
}

int startConnecting(int descriptor, const Address& address, std::uint32_t port) {
  sockaddr_storage name{};
  socklen_t length = 0;
  if (domainOf(descriptor) == AF_INET && IN6_IS_ADDR_V4MAPPED(&address.ip)) {
    sockaddr_in plain{};
    plain.sin_family = AF_INET;
    plain.sin_port = htons(static_cast<std::uint16_t>(port));
    std::memcpy(&plain.sin_addr, &address.ip.s6_addr[12], sizeof plain.sin_addr);
    length = sizeof plain;
    std::memcpy(&name, &plain, length);
  } else {
    sockaddr_in6 full{};
    full.sin6_family = AF_INET6;
    full.sin6_port = htons(static_cast<std::uint16_t>(port));
    full.sin6_addr = address.ip;
    full.sin6_scope_id = address.scope;
    length = sizeof full;
    std::memcpy(&name, &full, length);
  }
  int outcome = 0;
  do {
    outcome = connect(descriptor, reinterpret_cast<const sockaddr*>(&name), length) == 0 ? 0 : errno;
  } while (outcome == EINTR);
  return outcome;
}

int connectTo(int descriptor, const Address& address, std::uint32_t port, Clock::time_point deadline) {
  const int started = startConnecting(descriptor, address, port);
  if (started == 0 || started == EISCONN) {
    return 0;
  }
  if (started != EINPROGRESS && started != EALREADY) {
    return started;
  }
  if (const int error = waitFor(descriptor, POLLOUT, deadline); error != 0) {
    return error;
  }
  int outcome = 0;
  socklen_t length = sizeof outcome;
  return getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &outcome, &length) == 0 ? outcome : errno;
}

Address addressIn(const addrinfo& entry) {
  Address address{};
  if (entry.ai_family == AF_INET6) {
    sockaddr_in6 full;
    std::memcpy(&full, entry.ai_addr, sizeof full);
    address = {full.sin6_addr, full.sin6_scope_id};
  } else {
    sockaddr_in plain;
    std::memcpy(&plain, entry.ai_addr, sizeof plain);
    address.ip.s6_addr[10] = address.ip.s6_addr[11] = 0xff;
    std::memcpy(&address.ip.s6_addr[12], &plain.sin_addr, sizeof plain.sin_addr);
  }
  return address;
}

void append(AddressList* list, const Address& address) {
  const auto end = list->addresses.begin() + list->count;
  const bool known = std::any_of(list->addresses.begin(), end, [&address](const Address& other) {
    return IN6_ARE_ADDR_EQUAL(&other.ip, &address.ip) && other.scope == address.scope;
  });
  if (!known && list->count < kAddressLimit) {
    *end = address;
    ++list->count;
  }
}

/// Receives what is there, at most as much as `arrivals` holds for an endpoint; waits when nothing is. A wait
/// that runs out succeeds and leaves `*received` as it was.
unsigned int receive(int descriptor, char* buffer, std::size_t* received, int waitSeconds) {
  const Clock::time_point deadline = Clock::now() + seconds(waitSeconds);
  for (;;) {
    const ssize_t count = recv(descriptor, buffer, arrivals[0].size(), 0);
    if (count > 0) {
      *received = static_cast<std::size_t>(count);
      return 0;
    }
    if (count == 0) {
      return SQLO_PDB_PEER_CLOSED;
    }
    if (errno == EAGAIN) {
      // Chunks are gathered into full segments while the request is sent. Who waits for the answer has said
      // all of it: the last segment must not wait for an acknowledgement, which the peer may hold for 40 ms.
      setOption(descriptor, IPPROTO_TCP, TCP_NODELAY, 1);
      const int error = waitFor(descriptor, POLLIN, deadline);
      if (error != 0) {
        return error == ETIMEDOUT ? 0 : static_cast<unsigned int>(error);
      }
    } else if (errno != EINTR) {
      return lastError();
    }
  }
}

}  // namespace

unsigned int sqloPdbCommFncInit() {
  return 0;
}

unsigned int sqloPdbCommFncTerm() {
  for (Endpoint& endpoint : endpoints) {
    if (endpoint.handle != 0) {
      host::closeDescriptor(endpoint.descriptor);
    }
    endpoint = {};
  }
  return 0;
}

unsigned int sqloPdbCreateSocket(int* handle, int /*options*/) {
  *handle = 0;
  Endpoint* const place = find(0);
  if (place == nullptr) {
    return EMFILE;
  }
  const int descriptor = openDescriptor();
  if (descriptor < 0) {
    return lastError();
  }
  lastHandle = lastHandle == INT_MAX ? 1 : lastHandle + 1;
  *place = {lastHandle, descriptor, 0, 0};
  *handle = lastHandle;
  return 0;
}

unsigned int sqloPdbTcpIpResolveHostName(const char* host, SqloHostAddress* address, int /*retries*/,
                                         int /*options*/) {
  AddressList known{};
  store(address, known);
  // To the resolver no name at all means this machine.
  if (host == nullptr || *host == '\0') {
    return EINVAL;
  }
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  // How often name servers are asked again is said in resolv.conf(5).
  int status = 0;
  do {
    status = getaddrinfo(host, nullptr, &hints, &found);
  } while (status == EAI_SYSTEM && errno == EINTR);
  if (status != 0) {
    return status == EAI_SYSTEM ? lastError() : ENOENT;
  }
  for (const addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET || entry->ai_family == AF_INET6) {
      append(&known, addressIn(*entry));
    }
  }
  freeaddrinfo(found);
  store(address, known);
  return known.count == 0 ? ENOENT : 0;
}

unsigned int sqloPdbInitNodeAddrHndl(int /*type*/, SqloNodeAddress* node, const SqloHostAddress* address,
                                     unsigned int port) {
  Node target{contentOf<AddressList>(*address), port};
  const bool usable = target.host.count <= kAddressLimit && port != 0 && port <= 0xffff;
  if (!usable) {
    target = {};
  }
  store(node, target);
  return usable ? 0 : EINVAL;
}

unsigned int sqloPdbConnectSocket(int handle, const SqloNodeAddress* node) {
  Endpoint* const endpoint = findOpen(handle);
  if (endpoint == nullptr) {
    return EBADF;
  }
  const auto target = contentOf<Node>(*node);
  const Clock::time_point deadline = Clock::now() + kConnectLimit;
  int error = EDESTADDRREQ;
  for (std::uint32_t i = 0; i < target.host.count; ++i) {
    const Clock::time_point now = Clock::now();
    const auto share = (deadline - now) / (target.host.count - i);
    error = connectTo(endpoint->descriptor, target.host.addresses[i], target.port, now + share);
    if (error == 0) {
      return 0;
    }
    // What a failed try leaves behind would spoil the next one: it gets a socket of its own.
    host::closeDescriptor(endpoint->descriptor);
    endpoint->descriptor = openDescriptor();
    if (endpoint->descriptor < 0) {
      return lastError();
    }
  }
  return static_cast<unsigned int>(error);
}

unsigned int sqloPdbSendBuffer(int handle, const void* data, unsigned int count, unsigned int* sent) {
  *sent = 0;
  const Endpoint* const endpoint = findOpen(handle);
  if (endpoint == nullptr) {
    return EBADF;
  }
  for (;;) {
    const ssize_t taken = send(endpoint->descriptor, data, count, MSG_NOSIGNAL);
    if (taken >= 0) {
      *sent = static_cast<unsigned int>(taken);
      return 0;
    }
    if (errno == EAGAIN) {
      // A peer that takes nothing any more ends as an error of the connection; see the limits above.
      if (const int error = waitFor(endpoint->descriptor, POLLOUT, Clock::time_point::max()); error != 0) {
        return static_cast<unsigned int>(error);
      }
    } else if (errno != EINTR) {
      return lastError();
    }
  }
}

unsigned int sqloPdbRecvBuffer(int handle, void* buffer, unsigned int size, unsigned int* received,
                               int waitSeconds, int /*options*/) {
  *received = 0;
  Endpoint* const endpoint = findOpen(handle);
  if (endpoint == nullptr) {
    return EBADF;
  }
  if (size == 0) {
    return 0;
  }
  char* const waiting = arrivals[static_cast<std::size_t>(endpoint - endpoints.data())].data();
  if (endpoint->taken == endpoint->arrived) {
    endpoint->taken = endpoint->arrived = 0;
    const unsigned int code = receive(endpoint->descriptor, waiting, &endpoint->arrived, waitSeconds);
    if (code != 0) {
      return code;
    }
  }
  const std::size_t count = std::min<std::size_t>(size, endpoint->arrived - endpoint->taken);
  std::memcpy(buffer, waiting + endpoint->taken, count);
  endpoint->taken += count;
  *received = static_cast<unsigned int>(count);
  return 0;
}

unsigned int sqloPdbCloseSocket(int handle) {
  Endpoint* const endpoint = findOpen(handle);
  if (endpoint == nullptr) {
    return EBADF;
  }
  const int descriptor = endpoint->descriptor;
  *endpoint = {};
  return host::closeDescriptor(descriptor);
}
