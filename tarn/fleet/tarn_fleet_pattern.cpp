#include "tarn/fleet/tarn_fleet_pattern.h"

#include <algorithm>

namespace tarn {

namespace {

bool isAnyElement(std::string_view token) {
  const auto isDigit = [](char byte) { return byte >= '0' && byte <= '9'; };
  return token == "*" || (!token.empty() && std::all_of(token.begin(), token.end(), isDigit));
}

/// A text that stands for itself.
void addLiteral(std::string_view text, PlacePattern& pattern) {
  for (const char byte : text) {
    const bool isGlob = byte == '*' || byte == '?' || byte == '[';
    pattern.glob += isGlob ? std::string{'[', byte, ']'} : std::string(1, byte);
    pattern.like += byte == '%' || byte == '_' || byte == '\\' ? "\\" : "";
    pattern.like += byte;
  }
}

/// Whether the element has a name.
bool addToken(std::string_view token, PlacePattern& pattern) {
  if (isAnyElement(token)) {
    pattern.pointer += "/*";
    pattern.glob += "[[]*]";
    pattern.like += "[%]";
    return false;
  }
  const std::size_t name = token.ends_with(']') ? token.find('[') : std::string_view::npos;
  const bool isNamed = name != std::string_view::npos;
  pattern.pointer.append("/").append(token.substr(0, name)).append(isNamed ? "/*" : "");
  addLiteral("/", pattern);
  addLiteral(token, pattern);
  return isNamed;
}

}  // namespace

PlacePattern placePattern(std::string_view pointer) {
  if (pointer == "*") {
    return {"*", "*", "%"};
  }
  PlacePattern pattern;
  bool isNamed = false;
  while (pointer.starts_with('/')) {
    pointer.remove_prefix(1);
    const std::string_view token = pointer.substr(0, pointer.find('/'));
    isNamed = addToken(token, pattern) || isNamed;
    pointer.remove_prefix(token.size());
  }
  if (!isNamed) {
    pattern.glob = "*";
    pattern.like = "%";
  }
  return pattern;
}

}  // namespace tarn
