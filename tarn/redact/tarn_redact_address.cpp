#include "tarn/redact/tarn_redact_address.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cctype>
#include <charconv>
#include <vector>

namespace tarn {

namespace {

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t end = 0; end != std::string_view::npos;
       text.remove_prefix(std::min(end + 1, text.size()))) {
    end = text.find(separator);
    pieces.push_back(text.substr(0, end));
  }
  return pieces;
}

std::optional<std::uint16_t> number(std::string_view digits, int base) {
  std::uint16_t value = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value, base);
  return error == std::errc() && end == digits.end() ? std::optional(value) : std::nullopt;
}

bool isPadded(std::string_view group, std::size_t width) {
  return group.size() == width && group[0] == '0';
}

bool hasUpper(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char digit) { return digit >= 'A' && digit <= 'F'; });
}

std::optional<Address> readIpv4(std::string_view token) {
  const auto pieces = split(token, '.');
  if (pieces.size() != 4) {
    return std::nullopt;
  }
  Address address;
  address.style.padded = std::any_of(pieces.begin(), pieces.end(),
                                     [](auto piece) { return piece.size() > 1 && piece[0] == '0'; });
  for (std::size_t at = 0; at < 4; ++at) {
    const auto value = number(pieces[at], 10);
    if (!value || *value > 255 || (address.style.padded && pieces[at].size() != 3)) {
      return std::nullopt;
    }
    address.groups[at] = *value;
  }
  return address;
}

std::optional<Address> readBytes(const std::vector<std::string_view>& pieces, char separator) {
  Address address = {.kind = RedactKind::mac, .groups = {}, .style = {.separator = separator}};
  for (std::size_t at = 0; at < pieces.size(); ++at) {
    const auto value = number(pieces[at], 16);
    if (!value || pieces[at].size() != 2) {
      return std::nullopt;
    }
    address.groups[at] = *value;
  }
  return address;
}

/// `aabb.ccdd.eeff`
std::optional<Address> readDottedMac(std::string_view token) {
  const auto words = split(token, '.');
  std::vector<std::string_view> bytes;
  for (const auto word : words) {
    if (word.size() != 4) {
      return std::nullopt;
    }
    bytes.insert(bytes.end(), {word.substr(0, 2), word.substr(2)});
  }
  return bytes.size() == 6 ? readBytes(bytes, '.') : std::nullopt;
}

/// Six pieces, or three of twice the length between dots.
std::optional<Address> readMac(std::string_view token, char separator) {
  return separator == '.' ? readDottedMac(token) : readBytes(split(token, separator), separator);
}

/// The groups of one side of the `::`, appended; false when it is not one.
bool readGroups(std::string_view side, std::vector<std::uint16_t>* groups, AddressStyle* style) {
  if (side.empty()) {
    return true;
  }
  for (const auto piece : split(side, ':')) {
    const auto value = number(piece, 16);
    if (!value || piece.size() > 4) {
      return false;
    }
    style->padded = style->padded || isPadded(piece, 4);
    groups->push_back(*value);
  }
  return true;
}

/// Puts the last 32 bits, where they are written as IPv4, into the form of the others.
std::optional<std::string> withoutDots(std::string_view token, AddressStyle* style) {
  const std::size_t colon = token.rfind(':');
  if (token.find('.') == std::string_view::npos) {
    return std::string(token);
  }
  const auto tail = colon == std::string_view::npos ? std::nullopt : readIpv4(token.substr(colon + 1));
  if (!tail) {
    return std::nullopt;
  }
  style->dotted = true;
  const auto& bytes = tail->groups;
  return fmt::format("{}{:x}:{:x}", token.substr(0, colon + 1), bytes[0] << 8 | bytes[1],
                     bytes[2] << 8 | bytes[3]);
}

std::optional<Address> readIpv6(std::string_view token) {
  Address address = {.kind = RedactKind::ipv6, .groups = {}, .style = {}};
  const auto text = withoutDots(token, &address.style);
  if (!text) {
    return std::nullopt;
  }
  const std::string_view whole = *text;
  const std::size_t gap = whole.find("::");
  const bool compressed = gap != std::string_view::npos;
  std::vector<std::uint16_t> head;
  std::vector<std::uint16_t> tail;
  if (!readGroups(whole.substr(0, gap), &head, &address.style) ||
      (compressed && !readGroups(whole.substr(gap + 2), &tail, &address.style))) {
    return std::nullopt;
  }
  const std::size_t given = head.size() + tail.size();
  if (compressed ? given > 7 : given != 8) {
    return std::nullopt;
  }
  address.style.compressed = compressed;
  address.style.upper = hasUpper(token);
  std::copy(head.begin(), head.end(), address.groups.begin());
  std::copy_backward(tail.begin(), tail.end(), address.groups.end());
  return address;
}

struct Run {
  std::size_t begin = 0, length = 0;
};

/// The run of zeros that `::` stands for: the longest, the first of several.
Run longestZeros(const std::array<std::uint16_t, 8>& groups, std::size_t count) {
  Run longest;
  for (std::size_t begin = 0; begin < count;) {
    std::size_t end = begin;
    while (end < count && groups[end] == 0) {
      ++end;
    }
    if (end - begin > longest.length) {
      longest = {begin, end - begin};
    }
    begin = end + 1;
  }
  return longest;
}

std::string writeIpv6(const Address& address) {
  const std::size_t count = address.style.dotted ? 6 : 8;
  const Run gap = address.style.compressed ? longestZeros(address.groups, count) : Run();
  std::string text;
  for (std::size_t at = 0; at < count; ++at) {
    if (gap.length > 0 && at == gap.begin) {
      text += "::";
      at += gap.length - 1;
      continue;
    }
    text += text.empty() || text.back() == ':' ? "" : ":";
    text += fmt::format("{:0{}x}", address.groups[at], address.style.padded ? 4 : 1);
  }
  if (address.style.dotted) {
    const auto& groups = address.groups;
    text += fmt::format("{}{}.{}.{}.{}", text.back() == ':' ? "" : ":", groups[6] >> 8, groups[6] & 255,
                        groups[7] >> 8, groups[7] & 255);
  }
  return text;
}

std::string writeMac(const Address& address) {
  std::string text;
  for (std::size_t at = 0; at < 6; ++at) {
    const bool parted = at > 0 && (address.style.separator != '.' || at % 2 == 0);
    text += parted ? std::string(1, address.style.separator) : "";
    text += fmt::format("{:02x}", address.groups[at]);
  }
  return text;
}

std::string writeIpv4(const Address& address) {
  const auto& bytes = address.groups;
  return address.style.padded ? fmt::format("{:03}.{:03}.{:03}.{:03}", bytes[0], bytes[1], bytes[2], bytes[3])
                              : fmt::format("{}.{}.{}.{}", bytes[0], bytes[1], bytes[2], bytes[3]);
}

/// Ones, then zeros, and at least eight ones; all ones is the broadcast address.
bool isNetmask(const Address& address) {
  std::uint32_t bits = 0;
  for (std::size_t at = 0; at < 4; ++at) {
    bits = bits << 8 | address.groups[at];
  }
  return address.groups[0] == 255 && std::countl_one(bits) + std::countr_zero(bits) == 32;
}

}  // namespace

std::optional<Address> readAddress(std::string_view token) {
  const auto count = [token](char separator) { return std::count(token.begin(), token.end(), separator); };
  const auto colons = count(':');
  const char separator = colons == 5                      ? ':'
                         : count('-') == 5                ? '-'
                         : colons == 0 && count('.') == 2 ? '.'
                                                          : '\0';
  auto mac = separator == '\0' ? std::nullopt : readMac(token, separator);
  if (mac) {
    mac->style.upper = hasUpper(token);
    return mac;
  }
  return colons == 0 ? readIpv4(token) : readIpv6(token);
}

std::string writeAddress(const Address& address) {
  std::string text = address.kind == RedactKind::ipv4   ? writeIpv4(address)
                     : address.kind == RedactKind::ipv6 ? writeIpv6(address)
                                                        : writeMac(address);
  if (address.style.upper) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char digit) { return toupper(digit); });
  }
  return text;
}

bool isSpecial(const Address& address) {
  const auto all = [&](std::size_t from, std::uint16_t value) {
    return std::all_of(address.groups.begin() + static_cast<long>(from),
                       address.groups.begin() + static_cast<long>(address.count()),
                       [value](std::uint16_t group) { return group == value; });
  };
  if (address.kind == RedactKind::ipv4) {
    return all(0, 0) || address.groups[0] == 127 || isNetmask(address);
  }
  if (address.kind == RedactKind::mac) {
    return all(0, 0) || all(0, 255);
  }
  const auto& groups = address.groups;
  const bool zeros =
      std::all_of(groups.begin(), groups.begin() + 7, [](std::uint16_t group) { return group == 0; });
  return zeros && groups[7] <= 1;
}

}  // namespace tarn
