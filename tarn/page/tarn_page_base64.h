#pragma once
/// Base64 (RFC 4648, section 4), with padding.

#include <string>
#include <string_view>

namespace tarn {

inline std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    unsigned int group = 0;
    for (std::size_t byte = 0; byte < 3; ++byte) {
      const bool isThere = at + byte < bytes.size();
      group = group << 8 | (isThere ? static_cast<unsigned char>(bytes[at + byte]) : 0U);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      const bool isThere = at + digit <= bytes.size();  // one byte takes two digits, two take three
      text += isThere ? kDigits[group >> (18 - 6 * digit) & 63U] : '=';
    }
  }
  return text;
}

}  // namespace tarn
