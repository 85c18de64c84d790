#pragma once
/// Addresses as they are written: IPv4 (RFC 1123, also padded to three digits), IPv6 (RFC 4291, with or
/// without an IPv4 tail), and hardware addresses of 48 bits with colons, hyphens or dots.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tarn/redact/tarn_redact_kind.h"

namespace tarn {

/// How an address was written, so that another can be written the same way.
struct AddressStyle {
  bool padded = false;      ///< leading zeros in every group
  bool upper = false;       ///< hexadecimal digits
  bool compressed = false;  ///< `::` in the place that RFC 5952 gives it
  bool dotted = false;      ///< the last 32 bits of IPv6 as IPv4
  char separator = ':';     ///< of a hardware address
};

struct Address {
  RedactKind kind = RedactKind::ipv4;        ///< ipv4, ipv6 or mac
  std::array<std::uint16_t, 8> groups = {};  ///< 4 bytes, 8 words, or 6 bytes
  AddressStyle style;

  std::size_t count() const { return kind == RedactKind::ipv4 ? 4 : kind == RedactKind::mac ? 6 : 8; }
};

/// The address that the whole token is.
std::optional<Address> readAddress(std::string_view token);

std::string writeAddress(const Address& address);

/// An address that names no host: unspecified, loopback, broadcast, a netmask.
bool isSpecial(const Address& address);

}  // namespace tarn
