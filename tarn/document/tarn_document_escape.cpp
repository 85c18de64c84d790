#include "tarn/document/tarn_document_escape.h"

#include <algorithm>

#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kUnit = 6;  // of `\uXXXX`
constexpr char32_t kNoCharacter = 0xFFFD;

bool isHigh(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

/// -1 for what is no digit.
int hexDigit(char byte) {
  const char lower = static_cast<char>(byte | 0x20);
  return byte >= '0' && byte <= '9' ? byte - '0' : lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// `\uXXXX` at the beginning of a text that begins with a backslash and a "u".
Escape unitAt(std::string_view text) {
  Escape found = {Escape::Kind::known, kUnit, 0};
  for (std::size_t at = 2; at < kUnit; ++at) {
    if (at == text.size()) {
      return {Escape::Kind::unfinished, at, 0};
    }
    const int digit = hexDigit(text[at]);
    if (digit < 0) {
      return {Escape::Kind::unknown, at, 0};
    }
    found.character = found.character << 4 | static_cast<char32_t>(digit);
  }
  return found;
}

/// What a high surrogate and the text behind it come to.
Escape pairedWith(char32_t high, std::string_view rest) {
  if (rest.empty() || rest == "\\") {
    return {Escape::Kind::unfinished, kUnit, kNoCharacter};
  }
  const Escape low = rest.starts_with("\\u") ? unitAt(rest) : Escape{Escape::Kind::unknown, 0, 0};
  if (low.kind == Escape::Kind::unfinished) {
    return {Escape::Kind::unfinished, kUnit, kNoCharacter};
  }
  if (low.kind == Escape::Kind::known && isLow(low.character)) {
    return {Escape::Kind::known, 2 * kUnit, 0x10000 + ((high & 0x3FF) << 10 | (low.character & 0x3FF))};
  }
  return {Escape::Kind::known, kUnit, kNoCharacter};
}

void appendUtf8(char32_t character, std::string& text) {
  const auto tail = [character](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += {static_cast<char>(0xC0 | character >> 6), tail(0)};
  } else if (character < 0x10000) {
    text += {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
  } else {
    text += {static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
  }
}

}  // namespace

Escape escapeAt(std::string_view text) {
  constexpr std::string_view kNames = "\"\\/bfnrt";
  constexpr std::string_view kNamed = "\"\\/\b\f\n\r\t";
  if (text.size() < 2) {
    return {Escape::Kind::unfinished, text.size(), 0};
  }
  if (text[1] == 'u') {
    const Escape unit = unitAt(text);
    if (unit.kind != Escape::Kind::known || !(isHigh(unit.character) || isLow(unit.character))) {
      return unit;
    }
    return isHigh(unit.character) ? pairedWith(unit.character, text.substr(kUnit))
                                  : Escape{Escape::Kind::known, kUnit, kNoCharacter};
  }
  const std::size_t named = kNames.find(text[1]);
  return named == std::string_view::npos
             ? Escape{Escape::Kind::unknown, 2, 0}
             : Escape{Escape::Kind::known, 2, static_cast<unsigned char>(kNamed[named])};
}

std::size_t unfinishedUtf8(std::string_view text) {
  for (std::size_t length = 1; length <= std::min<std::size_t>(3, text.size()); ++length) {
    const auto byte = static_cast<unsigned char>(text[text.size() - length]);
    if ((byte & 0xC0) != 0x80) {
      const std::size_t whole = byte < 0xC2 || byte > 0xF4 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
      const bool begun = nextUtf8(text.substr(text.size() - length)).length == length;
      return length < whole && begun ? length : 0;
    }
  }
  return 0;
}

void appendUnescaped(std::string_view raw, std::string& text) {
  while (!raw.empty()) {
    const std::size_t run = std::min(raw.find('\\'), raw.size());
    text += raw.substr(0, run);
    raw.remove_prefix(run);
    if (raw.empty()) {
      return;
    }
    const Escape escape = escapeAt(raw);
    if (escape.character == 0 && escape.kind != Escape::Kind::known) {
      text += raw.substr(0, escape.length);
    } else {
      appendUtf8(escape.character, text);
    }
    raw.remove_prefix(escape.length);
  }
}

}  // namespace tarn
