#pragma once
/// What redaction knows to look for.

#include <array>
#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tarn {

enum class RedactKind : unsigned char { ipv4, ipv6, mac, email, host, user, customer, secret };

struct RedactKindRow {
  RedactKind kind;
  std::string_view name;      ///< on the command line, in maps and in counts
  std::string_view sentence;  ///< for the manual
};

inline constexpr std::array kRedactKinds = {
    RedactKindRow{RedactKind::ipv4, "ipv4",
                  "IPv4 addresses, but for loopback, unspecified, broadcast and netmasks"},
    RedactKindRow{RedactKind::ipv6, "ipv6", "IPv6 addresses, but for loopback and unspecified"},
    RedactKindRow{RedactKind::mac, "mac", "hardware addresses, with colons, hyphens or dots"},
    RedactKindRow{RedactKind::email, "email", "e-mail addresses"},
    RedactKindRow{RedactKind::host, "host",
                  "the host's name, and names that a listing gives as host or server"},
    RedactKindRow{RedactKind::user, "user",
                  "account names: of home directories, of URLs, and those given as user or owner"},
    RedactKindRow{RedactKind::customer, "customer", "the customer's facts, and what --also names"},
    RedactKindRow{RedactKind::secret, "secret", "passwords, tokens, keys, private key blocks"},
};

using RedactKinds = std::bitset<kRedactKinds.size()>;

constexpr std::size_t indexOf(RedactKind kind) {
  return static_cast<std::size_t>(kind);
}

constexpr std::string_view nameOf(RedactKind kind) {
  return kRedactKinds[indexOf(kind)].name;
}

constexpr std::optional<RedactKind> redactKindOf(std::string_view name) {
  for (const RedactKindRow& row : kRedactKinds) {
    if (row.name == name) {
      return row.kind;
    }
  }
  return std::nullopt;
}

}  // namespace tarn
