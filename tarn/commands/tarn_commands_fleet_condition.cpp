#include "tarn/commands/tarn_commands_fleet_condition.h"

namespace tarn {

namespace {

constexpr std::string_view kOperators = "=~><";  // in the order of FleetCondition::Test

/// From `at` on; npos when there is none.
std::size_t findOperator(std::string_view text, std::size_t at) {
  while (at < text.size() && kOperators.find(text[at]) == std::string_view::npos) {
    const std::size_t close = text[at] == '[' ? text.find(']', at) : std::string_view::npos;
    at = close == std::string_view::npos ? at + 1 : close;
  }
  return at < text.size() ? at : std::string_view::npos;
}

bool isEscape(std::string_view text, std::size_t at) {
  return text[at] == '~' && at + 1 < text.size() && (text[at + 1] == '0' || text[at + 1] == '1');
}

std::size_t operatorOf(std::string_view text) {
  std::size_t at = findOperator(text, 0);
  while (at != std::string_view::npos && isEscape(text, at)) {
    const std::size_t next = findOperator(text, at + 1);
    if (next == std::string_view::npos) {
      break;
    }
    at = next;
  }
  return at;
}

}  // namespace

std::optional<FleetCondition> parseCondition(std::string_view text) {
  const std::size_t at = operatorOf(text);
  const std::string_view pointer = text.substr(0, at);
  if (at == std::string_view::npos || (pointer != "*" && !pointer.starts_with('/'))) {
    return std::nullopt;
  }
  return FleetCondition{.pointer = std::string(pointer),
                        .test = static_cast<FleetCondition::Test>(kOperators.find(text[at])),
                        .value = std::string(text.substr(at + 1))};
}

}  // namespace tarn
