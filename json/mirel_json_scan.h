#pragma once
/// What the reader and the writer of JSON text know about its characters.

#include <string_view>

/// Whether the character may stand between tokens.
inline bool isBlank(char character) {
  return character == ' ' || character == '\n' || character == '\r' || character == '\t';
}

/// Where the run of spaces ends, at most at `end`.
const char* endOfSpaces(const char* text, const char* end);
/// Where the run of characters that are written as they are ends: before a backslash, line feed, carriage
/// return or double quote, and at most at `end`.
const char* endOfPlain(const char* text, const char* end);

/// A string as it stands in the text.
struct RawString {
  std::string_view contents;  ///< what is between the quotes
  bool plain = true;          ///< whether that is its text, which is written the same

  const char* end() const { return contents.data() + contents.size(); }
};

/// The string whose opening quote stands before `contents`. Without a closing quote it ends at `end`, where a
/// NUL stands.
RawString scanString(const char* contents, const char* end);
