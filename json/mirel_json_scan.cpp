#include "json/mirel_json_scan.h"

#include <cstdint>
#include <cstring>

#include "json/mirel_json_writer.h"

namespace {

bool isPlain(char character) {
  return character != '\\' && character != '"' && character != '\n' && character != '\r';
}

/// Not 0 when one of the eight characters is the wanted one.
std::uint64_t holds(std::uint64_t characters, char wanted) {
  constexpr std::uint64_t kOnes = ~0UL / 255;
  const std::uint64_t differences = characters ^ (kOnes * static_cast<unsigned char>(wanted));
  return (differences - kOnes) & ~differences & (kOnes << 7);
}

}  // namespace

const char* endOfPlain(const char* text, const char* end) {
  for (; end - text >= 8; text += 8) {
    std::uint64_t characters = 0;
    memcpy(&characters, text, sizeof characters);
    if ((holds(characters, '\\') | holds(characters, '"') | holds(characters, '\n') |
         holds(characters, '\r')) != 0) {
      break;
    }
  }
  while (text != end && isPlain(*text)) {
    ++text;
  }
  return text;
}

mirel_string RawString::text() const {
  const mirel_string result(contents, length);
  return escaped ? reverseEscape(result) : result;
}

RawString scanString(const char* contents, const char* end) {
  const char* at = endOfPlain(contents, end);
  RawString found{contents, 0, false, at != end && *at == '"'};
  for (; at != end && *at != '"'; ++at) {
    if (*at == '\\') {
      found.escaped = true;
      at += at[1] == '"' ? 1 : 0;
    }
  }
  found.length = static_cast<unsigned long>(at - contents);
  return found;
}
