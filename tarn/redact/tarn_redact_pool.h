#pragma once
/// Pseudonyms for addresses: of the same family, never the same for two, sharing every prefix of whole groups
/// that the originals share, with zero groups and IPv4's last 255 where the originals have them.
///
/// They lie where no host's address does, so they can be told from originals: IPv4 in 240.0.0.0/4
/// (reserved, RFC 1112), IPv6 in 7e7e::/16 (never assigned), hardware addresses below 0a:de (administered
/// locally). That leaves 28 bits of IPv4's 32: where more networks come than there is room for, some share a
/// pseudonym's prefix that did not share one before.

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "tarn/redact/tarn_redact_address.h"

namespace tarn {

/// Whether the address lies where pseudonyms do.
bool isPseudonym(const Address& address);

class AddressPool {
 public:
  /// In the style of the original. The same groups give the same groups. Nothing when the family is used up.
  std::optional<Address> pseudonymOf(const Address& original);
  /// Takes note of a pair that was given before.
  void learn(const Address& original, const Address& pseudonym);
  /// An original that lies where pseudonyms do: it is never given.
  void avoid(const Address& original);

 private:
  using Prefix = std::string;  ///< family and groups, as bytes

  /// Which groups were given below a pseudonym's prefix.
  struct Children {
    std::uint32_t given = 0;  ///< counted up; wraps where prefixes have to share
    bool zero = false, last = false;
  };

  std::optional<std::uint16_t> nextGroup(const Prefix& above, const Address& original, std::size_t level);
  std::optional<Address> elsewhere(const Address& original);

  std::unordered_map<Prefix, std::uint16_t>
      m_groups;                                     ///< by the original's prefix: the pseudonym's last group
  std::unordered_map<Prefix, Children> m_children;  ///< by the pseudonym's prefix
  std::unordered_set<Prefix> m_avoided;
  std::uint64_t m_elsewhere = 0;  ///< where room was found last for what found none beside its neighbours
};

}  // namespace tarn
