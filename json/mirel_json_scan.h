#pragma once
/// What the readers and the writer of JSON text know about its characters.

#include "common/mirel_string.h"

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
  const char* contents = "";  ///< what is between the quotes
  unsigned long length = 0;
  bool asWritten = true;  ///< whether its text, escaped again, is the same

  const char* end() const { return contents + length; }
  /// With its escapes undone as `reverseEscape` does (json/mirel_json_writer.h).
  mirel_string text() const;
};

/// The string whose opening quote stands before `contents`. Without a closing quote it ends at `end`, where a
/// NUL stands: the only one. It is not returned because passing it on by copies costs a fifth of parsing
/// rows.
void scanString(const char* contents, const char* end, RawString* found);
