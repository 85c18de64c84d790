#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

struct Lead {
  std::size_t length;         ///< of the sequence, 0 for a byte that begins none
  unsigned char least, most;  ///< bounds of the second byte
  unsigned char mask;         ///< of the lead's own bits
};

Lead leadOf(unsigned char byte) {
  if (byte < 0xC2 || byte > 0xF4) {
    return {0, 0, 0, 0};
  }
  if (byte < 0xE0) {
    return {2, 0x80, 0xBF, 0x1F};
  }
  if (byte < 0xF0) {
    const unsigned char least = byte == 0xE0 ? 0xA0 : 0x80;
    const unsigned char most = byte == 0xED ? 0x9F : 0xBF;
    return {3, least, most, 0x0F};
  }
  const unsigned char least = byte == 0xF0 ? 0x90 : 0x80;
  const unsigned char most = byte == 0xF4 ? 0x8F : 0xBF;
  return {4, least, most, 0x07};
}

}  // namespace

Utf8 nextUtf8(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) {
    return {first, 1, true};
  }
  const Lead lead = leadOf(first);
  Utf8 found = {static_cast<char32_t>(first & lead.mask), 1, false};
  unsigned char least = lead.least;
  unsigned char most = lead.most;
  for (; found.length < lead.length && found.length < text.size(); ++found.length) {
    const auto byte = static_cast<unsigned char>(text[found.length]);
    if (byte < least || byte > most) {
      return found;
    }
    found.character = found.character << 6 | (byte & 0x3F);
    least = 0x80;
    most = 0xBF;
  }
  found.valid = lead.length != 0 && found.length == lead.length;
  return found;
}

void appendMended(std::string_view text, std::string& out) {
  while (!text.empty()) {
    const Utf8 next = nextUtf8(text);
    out += next.valid ? text.substr(0, next.length) : kReplacement;
    text.remove_prefix(next.length);
  }
}

}  // namespace tarn
