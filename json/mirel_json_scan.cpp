#include "json/mirel_json_scan.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "json/mirel_json_writer.h"

namespace {

// Eight characters at a time, in the order of memory.
using Eight = std::uint64_t;
/// Times a character: that character in each of the eight.
constexpr Eight kEach = ~Eight{0} / 255;

Eight load(const char* text) {
  Eight characters = 0;
  memcpy(&characters, text, sizeof characters);
  return characters;
}

/// Sets the highest bit of each of the characters that is the wanted one, and no other bit.
Eight marks(Eight characters, char wanted) {
  constexpr Eight kLow = kEach * 0x7f;
  const Eight differences = characters ^ (kEach * static_cast<unsigned char>(wanted));
  return ~(((differences & kLow) + kLow) | differences | kLow);
}

/// How many characters stand before the first one that has a bit set.
int before(Eight bits) {
  return (std::endian::native == std::endian::little ? std::countr_zero(bits) : std::countl_zero(bits)) / 8;
}

bool isPlain(char character) {
  return character != '\\' && character != '"' && character != '\n' && character != '\r';
}

}  // namespace

const char* endOfSpaces(const char* text, const char* end) {
  for (; end - text >= 8; text += 8) {
    const Eight others = load(text) ^ (kEach * ' ');
    if (others != 0) {
      return text + before(others);
    }
  }
  while (text != end && *text == ' ') {
    ++text;
  }
  return text;
}

const char* endOfPlain(const char* text, const char* end) {
  for (; end - text >= 8; text += 8) {
    const Eight characters = load(text);
    const Eight special =
        marks(characters, '\\') | marks(characters, '"') | marks(characters, '\n') | marks(characters, '\r');
    if (special != 0) {
      return text + before(special);
    }
  }
  while (text != end && isPlain(*text)) {
    ++text;
  }
  return text;
}

mirel_string RawString::text() const {
  return asWritten ? unescapeJson(contents, length) : reverseEscape({contents, length});
}

void scanString(const char* contents, const char* end, RawString* found) {
  found->contents = contents;
  found->asWritten = true;
  const char* at = endOfPlain(contents, end);
  while (at != end && *at != '"') {
    if (*at == '\\') {
      const bool again = at[1] == '"' || at[1] == 'n' || at[1] == 'r';
      found->asWritten = found->asWritten && again;
      at += again ? 2 : 1;
    } else {
      found->asWritten = false;
      ++at;
    }
    at = endOfPlain(at, end);
  }
  found->length = static_cast<unsigned long>(at - contents);
}
