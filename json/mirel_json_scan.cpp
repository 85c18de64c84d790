#include "json/mirel_json_scan.h"

#include <cstring>

#include "common/mirel_common_eight.h"
#include "json/mirel_json_writer.h"

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
