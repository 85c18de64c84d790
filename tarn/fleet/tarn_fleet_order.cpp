#include "tarn/fleet/tarn_fleet_order.h"

#include <algorithm>
#include <cstdlib>

namespace tarn {

namespace {

constexpr std::size_t kDigits = 18;
constexpr std::size_t kExponentDigits = 3;
/// `0` tells one digit, `1` two: what stands beside digits elsewhere in ASCII stays there. Longer runs count
/// as this long.
constexpr std::size_t kLongestRun = 79;

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}

/// Takes a run of digits off the text's beginning; false when there is none, or it is too long.
bool takeDigits(std::string_view& text, std::size_t most) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
  const auto count = static_cast<std::size_t>(end - text.begin());
  text.remove_prefix(count);
  return count > 0 && count <= most;
}

bool takeOneOf(std::string_view& text, std::string_view bytes) {
  const bool isThere = !text.empty() && bytes.find(text.front()) != std::string_view::npos;
  text.remove_prefix(isThere ? 1 : 0);
  return isThere;
}

bool isNumber(std::string_view text) {
  takeOneOf(text, "+-");
  if (!takeDigits(text, kDigits) || (takeOneOf(text, ".") && !takeDigits(text, kDigits))) {
    return false;
  }
  if (takeOneOf(text, "eE")) {
    takeOneOf(text, "+-");
    return takeDigits(text, kExponentDigits) && text.empty();
  }
  return text.empty();
}

}  // namespace

std::optional<double> numericValue(std::string_view text) {
  return isNumber(text) ? std::optional(std::strtod(std::string(text).c_str(), nullptr)) : std::nullopt;
}

std::string naturalKey(std::string_view text) {
  std::string key;
  while (!text.empty()) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto digits = static_cast<std::size_t>(end - text.begin());
    if (digits > 0) {
      key += static_cast<char>('0' - 1 + std::min(digits, kLongestRun));
    }
    const std::size_t length = std::max<std::size_t>(digits, 1);
    key.append(text.substr(0, length));
    text.remove_prefix(length);
  }
  return key;
}

}  // namespace tarn
