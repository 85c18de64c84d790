#include "tarn/redact/tarn_redact_pool.h"

#include <algorithm>

namespace tarn {

namespace {

/// Groups that are the same for all pseudonyms of a family.
std::size_t fixedGroups(RedactKind kind) {
  return kind == RedactKind::ipv4 ? 0 : kind == RedactKind::ipv6 ? 1 : 2;
}

Address emptyPseudonym(const Address& original) {
  Address result = {.kind = original.kind, .groups = {}, .style = original.style};
  if (original.kind == RedactKind::ipv6) {
    result.groups[0] = 0x7e7e;
  } else if (original.kind == RedactKind::mac) {
    result.groups[0] = 0x0a;
    result.groups[1] = 0xde;
  }
  return result;
}

struct Range {
  std::uint16_t first;
  std::uint32_t size;
};

/// The groups that may be given at a level.
Range rangeAt(const Address& address, std::size_t level) {
  if (address.kind == RedactKind::ipv4 && level == 0) {
    return {240, 15};
  }
  if (address.kind == RedactKind::ipv4 && level == 3) {
    return {1, 254};
  }
  return {1, address.kind == RedactKind::ipv6 ? 0xFFFFU : 0xFFU};
}

/// Family and the first `count` groups.
std::string prefixOf(const Address& address, std::size_t count) {
  std::string prefix(1, static_cast<char>(address.kind));
  for (std::size_t at = 0; at < count; ++at) {
    if (address.kind == RedactKind::ipv6) {
      prefix += static_cast<char>(address.groups[at] >> 8);
    }
    prefix += static_cast<char>(address.groups[at] & 255);
  }
  return prefix;
}

}  // namespace

bool isPseudonym(const Address& address) {
  const auto& groups = address.groups;
  switch (address.kind) {
    case RedactKind::ipv4:
      return groups[0] >= 240 && !isSpecial(address);
    case RedactKind::ipv6:
      return groups[0] == 0x7e7e;
    default:
      return groups[0] == 0x0a && groups[1] == 0xde;
  }
}

std::optional<std::uint16_t> AddressPool::nextGroup(const Prefix& above, const Address& original,
                                                    std::size_t level) {
  Children& children = m_children[above];
  const Range range = rangeAt(original, level);
  const bool lowest = level + 1 == original.count();
  const std::uint16_t group = original.groups[level];
  if (group == 0 && !children.zero && range.first == 1) {
    children.zero = true;
    return 0;
  }
  if (group == 255 && lowest && !children.last && original.kind == RedactKind::ipv4) {
    children.last = true;
    return 255;
  }
  if (lowest && children.given == range.size) {
    return std::nullopt;
  }
  return static_cast<std::uint16_t>(range.first + children.given++ % range.size);
}

std::optional<Address> AddressPool::pseudonymOf(const Address& original) {
  Address result = emptyPseudonym(original);
  for (std::size_t level = fixedGroups(original.kind); level < original.count(); ++level) {
    const Prefix prefix = prefixOf(original, level + 1);
    const auto known = m_groups.find(prefix);
    if (known != m_groups.end()) {
      result.groups[level] = known->second;
      continue;
    }
    const auto group = nextGroup(prefixOf(result, level), original, level);
    if (!group) {
      return elsewhere(original);
    }
    result.groups[level] = *group;
    if (level + 1 < original.count() || !m_avoided.contains(prefixOf(result, level + 1))) {
      m_groups.emplace(prefix, *group);
    } else {
      --level;  // the next one, then
    }
  }
  return result;
}

// Where a network has no room left, its prefix cannot be kept: the first network of the family that has some
// takes the address in. It is remembered by its whole text in the map, not here.
std::optional<Address> AddressPool::elsewhere(const Address& original) {
  Address result = emptyPseudonym(original);
  const std::size_t levels = original.count();
  for (; m_elsewhere < std::uint64_t{1} << 20; ++m_elsewhere) {
    result.groups[levels - 2] = static_cast<std::uint16_t>(m_elsewhere & 255);
    result.groups[levels - 3] = static_cast<std::uint16_t>(m_elsewhere >> 8 & 255);
    if (original.kind == RedactKind::ipv4) {
      result.groups[0] = static_cast<std::uint16_t>(240 + (m_elsewhere >> 16) % 15);
    }
    const auto group = nextGroup(prefixOf(result, levels - 1), original, levels - 1);
    if (!group) {
      continue;
    }
    result.groups[levels - 1] = *group;
    if (!m_avoided.contains(prefixOf(result, levels))) {
      return result;
    }
  }
  return std::nullopt;
}

void AddressPool::learn(const Address& original, const Address& pseudonym) {
  for (std::size_t level = fixedGroups(original.kind); level < original.count(); ++level) {
    const std::uint16_t group = pseudonym.groups[level];
    m_groups.emplace(prefixOf(original, level + 1), group);
    Children& children = m_children[prefixOf(pseudonym, level)];
    const Range range = rangeAt(original, level);
    if (group < range.first) {
      children.zero = true;
    } else if (group - range.first < static_cast<int>(range.size)) {
      children.given = std::max(children.given, static_cast<std::uint32_t>(group - range.first + 1));
    } else {
      children.last = true;
    }
  }
}

void AddressPool::avoid(const Address& original) {
  m_avoided.insert(prefixOf(original, original.count()));
}

}  // namespace tarn
