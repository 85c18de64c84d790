#include "tarn/redact/tarn_redact_cover.h"

#include <algorithm>
#include <cstdlib>

namespace tarn {

namespace {

constexpr std::size_t kLongest = 6;  // \uXXXX

std::size_t escapeLength(std::string_view escape) {
  return std::min(escape.size(), escape.size() > 1 && escape[1] == 'u' ? kLongest : std::size_t{2});
}

/// What the escape's bytes look like to a pattern.
char coverOf(std::string_view escape) {
  switch (escape.size() < 2 ? '\0' : escape[1]) {
    case 'n':
    case 'r':
      return '\n';
    case 't':
    case 'b':
    case 'f':
      return ' ';
    case 'u':
      return strtoul(std::string(escape.substr(2)).c_str(), nullptr, 16) < 0x80 ? ' ' : '\x80';
    case '"':
      return '\'';
    case '\0':
      return '\\';
    default:
      return escape[1];
  }
}

}  // namespace

std::size_t openEscape(std::string_view bytes) {
  // A backslash is escaped when an odd number stands before it.
  const std::size_t from = bytes.size() - std::min(bytes.size(), kLongest - 1);
  for (std::size_t at = from; at < bytes.size(); ++at) {
    const std::size_t before = bytes.find_last_not_of('\\', at);
    const std::size_t run = bytes[at] == '\\' ? at - (before == std::string_view::npos ? 0 : before + 1) : 0;
    const bool begins = bytes[at] == '\\' && run % 2 == 0;
    const bool isUnicode = at + 1 < bytes.size() && bytes[at + 1] == 'u';
    if (begins && at + (isUnicode ? kLongest : 2) > bytes.size()) {
      return bytes.size() - at;
    }
  }
  return 0;
}

void appendCovered(std::string_view bytes, std::string* text) {
  const std::size_t begin = text->size();
  *text += bytes;
  for (std::size_t at = bytes.find('\\'); at != std::string_view::npos; at = bytes.find('\\', at)) {
    const std::string_view escape = bytes.substr(at, kLongest);
    const std::size_t length = escapeLength(escape);
    std::fill_n(text->begin() + static_cast<std::ptrdiff_t>(begin + at), length,
                coverOf(escape.substr(0, length)));
    at += length;
  }
}

}  // namespace tarn
