#pragma once
/// UTF-8 (Unicode 3.9, table 3-7), one character at a time.

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  ///< U+FFFD

struct Utf8 {
  char32_t character = 0;
  std::size_t length = 1;  ///< in bytes; of the maximal subpart when not valid
  bool valid = true;
};

/// The first character of a text that is not empty.
Utf8 nextUtf8(std::string_view text);

/// Appends a text as UTF-8: U+FFFD in place of each maximal subpart that is none.
void appendMended(std::string_view text, std::string& out);

}  // namespace tarn
