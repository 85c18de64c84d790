#include "tarn/show/tarn_show_bars.h"

#include <strings.h>

#include <algorithm>
#include <cmath>

#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

constexpr const char* kObjectify = "TARN_OBJECTIFY";
constexpr std::size_t kBarsAtMost = 20;
constexpr std::size_t kBarWidth = 30;
constexpr std::size_t kLabelAtMost = 30;

/// The columns of a row whose TARN_OBJECTIFY names one of them; the other one counts.
std::optional<BarColumns> objectified(const Tree& tree, const Node& row) {
  const Node* const named = tree.member(row, kObjectify);
  BarColumns columns;
  for (const Node& member : tree.children(row)) {
    if (named == nullptr || &member == named) {
      continue;
    }
    const bool isLabel = strcasecmp(std::string(member.key).c_str(), std::string(named->text).c_str()) == 0;
    (isLabel ? columns.label : columns.value) = member.key;
  }
  return columns.label.empty() || columns.value.empty() ? std::nullopt : std::optional(columns);
}

bool fits(const Tree& tree, const Node& row, const BarColumns& columns) {
  const Node* const value = tree.member(row, columns.value);
  const std::size_t count = tree.member(row, kObjectify) == nullptr ? 2 : 3;
  return row.count == count && tree.member(row, columns.label) != nullptr && value != nullptr &&
         numberOf(value->text);
}

struct Bar {
  Shown label;
  std::uint64_t value;
};

std::vector<Bar> barsOf(const Tree& tree, const Node& array, const BarColumns& columns) {
  std::vector<Bar> bars;
  for (const Node& row : tree.children(array)) {
    const std::string_view label = tree.member(row, columns.label)->text;
    bars.push_back({label.empty() ? Shown("(empty)") : fitted(shown(label), kLabelAtMost),
                    *numberOf(tree.member(row, columns.value)->text)});
  }
  std::stable_sort(bars.begin(), bars.end(),
                   [](const Bar& one, const Bar& other) { return one.value > other.value; });
  return bars;
}

}  // namespace

std::optional<BarColumns> barColumns(const Tree& tree, const Node& array, const Fact* fact) {
  std::optional<BarColumns> columns = objectified(tree, *tree.children(array).begin());
  if (fact != nullptr && fact->chart.size() == 3) {
    columns = BarColumns{fact->chart[1], fact->chart[2]};
  }
  for (const Node& row : tree.children(array)) {
    if (!columns || !fits(tree, row, *columns)) {
      return std::nullopt;
    }
  }
  return columns;
}

void showBars(const Tree& tree, const Node& array, const BarColumns& names, std::size_t indent,
              Lines& lines) {
  const std::vector<Bar> bars = barsOf(tree, array, names);
  const std::size_t shownBars = lines.most(bars.size(), kBarsAtMost);
  double sum = 0;
  std::size_t width = 0;
  for (const Bar& bar : bars) {
    sum += static_cast<double>(bar.value);
    width = std::max(width, columns(bar.label.text()));
  }
  const std::size_t digits = fmt::to_string(bars.front().value).size();
  const double most = std::max(1.0, static_cast<double>(bars.front().value));
  for (std::size_t i = 0; i < shownBars; ++i) {
    const auto value = static_cast<double>(bars[i].value);
    const auto length = static_cast<std::size_t>(std::lround(value / most * kBarWidth));
    lines.line(indent,
               say("{}{}  {:{}}  {:>5}  {}", bars[i].label, blanks(width - columns(bars[i].label.text())),
                   bars[i].value, digits, percentOf(sum == 0 ? 0 : value / sum),
                   length == 0 && value > 0 ? Shown("▏") : barOf(1, length)));
  }
  lines.rest(indent, bars.size() - shownBars, "row");
}

}  // namespace tarn
