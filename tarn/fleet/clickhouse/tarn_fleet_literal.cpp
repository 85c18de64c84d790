#include "tarn/fleet/clickhouse/tarn_fleet_literal.h"

namespace tarn {

std::string clickhouseLiteral(std::string_view text) {
  constexpr std::string_view kSpecial("'\\\n\r\t\0", 6);
  constexpr std::string_view kLetters = "'\\nrt0";
  std::string literal = "'";
  for (const char byte : text) {
    const std::size_t at = kSpecial.find(byte);
    if (at != std::string_view::npos) {
      literal += '\\';
    }
    literal += at == std::string_view::npos ? byte : kLetters[at];
  }
  return literal + "'";
}

}  // namespace tarn
