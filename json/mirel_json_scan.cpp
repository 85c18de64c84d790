#include "json/mirel_json_scan.h"

#include <cstring>

#include "common/mirel_common_eight.h"

using namespace eight;

namespace {

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

RawString scanString(const char* contents, const char* end) {
  const char* at = endOfPlain(contents, end);
  const bool plain = at == end || *at == '"';
  while (at != end && *at != '"') {
    at += *at == '\\' && at[1] == '"' ? 2 : 1;
    at = endOfPlain(at, end);
  }
  return {{contents, static_cast<unsigned long>(at - contents)}, plain};
}
