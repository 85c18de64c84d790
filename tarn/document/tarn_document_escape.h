#pragma once
/// What stands between the quotes of a string: escapes and characters, and the search for what is neither
/// plain nor text.

#include <cstddef>
#include <string>
#include <string_view>

#include "common/mirel_common_eight.h"

namespace tarn {

/// Where the run of ordinary bytes ends: before a quote, a backslash, a byte below 0x20, and at most at
/// `end`. The highest bit of `seen` is set when one of the bytes looked at is above 0x7F; it may be set, too,
/// for one that stands a little further on.
inline const char* endOfText(const char* text, const char* end, unsigned char* seen) {
  using Sixteen __attribute__((vector_size(16))) = unsigned char;
  struct Halves {
    eight::Eight first, second;
  };
  eight::Eight all = 0;
  eight::Eight special = 0;
  for (; end - text >= 16; text += 16) {
    Sixteen bytes;
    memcpy(&bytes, text, sizeof bytes);
    const auto found = std::bit_cast<Halves>((bytes == '"') | (bytes == '\\') | (bytes < 0x20));
    const auto halves = std::bit_cast<Halves>(bytes);
    all |= halves.first | halves.second;
    if ((found.first | found.second) != 0) {
      text += found.first != 0 ? 0 : 8;
      special = found.first != 0 ? found.first : found.second;
      break;
    }
  }
  *seen = static_cast<unsigned char>(*seen | ((all & eight::kHighest) != 0 ? 0x80 : 0));
  if (special != 0) {
    return text + eight::before(special);
  }
  for (; text != end; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    if (byte < 0x20 || byte == '"' || byte == '\\') {
      break;
    }
    *seen = static_cast<unsigned char>(*seen | byte);
  }
  return text;
}

/// Where the run of spaces ends, at most at `end`.
inline const char* endOfSpaces(const char* text, const char* end) {
  for (; end - text >= 8; text += 8) {
    if (const eight::Eight others = eight::load(text) ^ (eight::kEach * ' '); others != 0) {
      return text + eight::before(others);
    }
  }
  while (text != end && *text == ' ') {
    ++text;
  }
  return text;
}

/// An escape at the beginning of a text; a pair of surrogates is one.
struct Escape {
  enum class Kind { known, unknown, unfinished };
  Kind kind = Kind::known;
  std::size_t length = 2;  ///< in bytes
  char32_t character = 0;  ///< U+FFFD for a surrogate without its partner
};

/// Of a text that begins with a backslash. One that the text's end cuts off is unfinished; a high surrogate
/// there is, too.
Escape escapeAt(std::string_view text);

/// How many bytes at the text's end are the beginning of a character that is not all there.
std::size_t unfinishedUtf8(std::string_view text);

/// Appends the text that the raw bytes of a string (or of a piece, see `Piece`) stand for: escapes undone,
/// bytes as they are. A surrogate without its partner becomes U+FFFD. What is no escape stays as it is.
void appendUnescaped(std::string_view raw, std::string& text);

}  // namespace tarn
