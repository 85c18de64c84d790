#include "platform/host/sqlcli/mirel_host_utf8.h"

namespace host {

namespace {

bool continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// How many bytes a character has, by its first one; 1 for what begins no longer character.
std::size_t characterLength(char first) {
  const auto byte = static_cast<unsigned char>(first);
  if (byte < 0xC2 || byte > 0xF4) {
    return 1;
  }
  return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

std::size_t wholeCharacters(std::string_view text) {
  std::size_t behind = 0;  // continuation bytes at the end
  while (behind < 3 && behind < text.size() && continues(text[text.size() - 1 - behind])) {
    ++behind;
  }
  if (behind == text.size()) {
    return text.size();
  }
  const std::size_t first = text.size() - 1 - behind;
  return first + characterLength(text[first]) > text.size() ? first : text.size();
}

std::size_t copyCut(std::string_view text, char* buffer, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  if (text.size() >= size) {
    text = text.substr(0, size - 1);
    text = text.substr(0, wholeCharacters(text));
  }
  buffer[text.copy(buffer, text.size())] = '\0';
  return text.size();
}

}  // namespace host
