#include "tarn/show/tarn_show_value.h"

#include <algorithm>
#include <cmath>

namespace tarn {

namespace {

constexpr std::size_t kDigitsAtMost = 18;
constexpr double kStep = 1024;
constexpr std::size_t kDecimals = 2;

/// At least 1 KiB; a decimal where it tells something.
Shown binary(std::uint64_t bytes) {
  constexpr const char* kUnits[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  std::size_t unit = 0;
  double size = static_cast<double>(bytes) / kStep;
  while (size >= kStep) {
    size /= kStep;
    ++unit;
  }
  const double rounded = std::round(size * 10) / 10;
  const Shown number = rounded == std::floor(rounded) ? say("{:.0f}", rounded) : say("{:.1f}", rounded);
  return say("{} {}", number, shown(kUnits[unit]));
}

}  // namespace

std::optional<std::uint64_t> numberOf(std::string_view text) {
  if (text.empty() || text.size() > kDigitsAtMost ||
      text.find_first_not_of("0123456789") != std::string_view::npos) {
    return std::nullopt;
  }
  std::uint64_t number = 0;
  for (const char digit : text) {
    number = number * 10 + static_cast<std::uint64_t>(digit - '0');
  }
  return number;
}

std::string_view withoutEnd(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
}

Shown valueOf(std::string_view text, Unit unit) {
  const std::optional<std::uint64_t> number = numberOf(text);
  if (number && unit == Unit::bytes && *number >= 1024) {
    return say("{} ({})", binary(*number), *number);
  }
  if (number && unit == Unit::megahertz) {
    return say("{} MHz", *number);
  }
  return shown(withoutEnd(text));
}

Shown sizeOf(std::uint64_t bytes) {
  return bytes < 1024 ? say("{} bytes", bytes) : valueOf(std::to_string(bytes), Unit::bytes);
}

std::string_view withoutDecimals(std::string_view text, Unit unit) {
  const bool isNumber = unit == Unit::number || unit == Unit::count || unit == Unit::pages;
  const std::size_t point = text.find('.');
  if (!isNumber || point == std::string_view::npos || text.size() - point <= kDecimals + 2 ||
      !numberOf(text.substr(0, point)) ||
      text.find_first_not_of("0123456789", point + 1) != std::string_view::npos) {
    return text;
  }
  return text.substr(0, point + 1 + kDecimals);
}

Shown brieflyOf(std::string_view text, Unit unit) {
  const std::optional<std::uint64_t> number = numberOf(text);
  return number && unit == Unit::bytes && *number >= 1024 ? binary(*number) : valueOf(text, unit);
}

bool isSilent(const Node& node) {
  if (node.kind == NodeKind::object || node.kind == NodeKind::array) {
    return node.count == 0;
  }
  return node.text.empty() || (node.kind == NodeKind::text && node.text == "null");
}

double partOf(const Tree& tree, const Node& node, const Fact& fact) {
  const Node* const whole = fact.chart.size() == 2 ? tree.find(fact.chart[1]) : nullptr;
  const auto part = numberOf(node.text);
  const auto all = whole == nullptr ? std::nullopt : numberOf(whole->text);
  return part && all && *all > 0 ? static_cast<double>(*part) / static_cast<double>(*all) : -1;
}

Shown barOf(double part, std::size_t width) {
  const double filled = std::round(std::clamp(part, 0.0, 1.0) * static_cast<double>(width));
  Shown bar;
  for (std::size_t i = 0; i < width; ++i) {
    bar += static_cast<double>(i) < filled ? "█" : "░";
  }
  return bar;
}

Shown percentOf(double part) {
  return part > 0 && part < 0.005 ? Shown("<1 %") : say("{:.0f} %", part * 100);
}

}  // namespace tarn
