#pragma once
/// Eight characters at a time, in the order of memory: how scans of text look for a few characters in runs of
/// others, without asking the processor for more than its word.

#include <bit>
#include <cstdint>
#include <cstring>

namespace eight {

using Eight = std::uint64_t;

/// Times a character: that character in each of the eight.
constexpr Eight kEach = ~Eight{0} / 255;
/// The highest bit of each.
constexpr Eight kHighest = kEach * 0x80;

inline Eight load(const char* text) {
  Eight characters = 0;
  memcpy(&characters, text, sizeof characters);
  return characters;
}

/// Sets the highest bit of each of the characters that is the wanted one, and no other bit.
inline Eight marks(Eight characters, char wanted) {
  constexpr Eight kLow = kEach * 0x7f;
  const Eight differences = characters ^ (kEach * static_cast<unsigned char>(wanted));
  return ~(((differences & kLow) + kLow) | differences | kLow);
}

/// The same for characters below `bound`, which is at most 0x80.
inline Eight marksBelow(Eight characters, unsigned char bound) {
  return ~(((characters & ~kHighest) + kEach * (0x80U - bound)) | characters) & kHighest;
}

/// How many characters stand before the first one that has a bit set.
inline int before(Eight bits) {
  return (std::endian::native == std::endian::little ? std::countr_zero(bits) : std::countl_zero(bits)) / 8;
}

}  // namespace eight
