#include "tarn/compare/tarn_compare_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tarn/compare/tarn_compare_naming.h"
#include "tarn/document/tarn_document_path.h"

namespace tarn {

namespace {

Side sideOf(const Tree& tree, const Digests& digests, const Node& container) {
  Side side = {tree, digests, {}};
  side.elements.reserve(container.count);
  for (const Node& child : tree.children(container)) {
    side.elements.push_back(&child);
  }
  return side;
}

Digest nameOf(const Node& member) {
  return digestOf(digestOf(member.key), member.repeat);
}

std::vector<Digest> memberNames(const Side& side) {
  std::vector<Digest> names;
  names.reserve(side.elements.size());
  for (const Node* const member : side.elements) {
    names.push_back(nameOf(*member));
  }
  return names;
}

std::vector<std::string_view> namesOf(const Rows& rows, const ColumnSet& columns) {
  std::vector<std::string_view> names;
  for (const std::size_t column : columns) {
    names.push_back(rows.columns()[column]);
  }
  return names;
}

/// The nodes at both ends of a pair; none where it has none.
std::pair<const Node*, const Node*> endsOf(const Pair& pair, const Side& before, const Side& after) {
  return {pair.before ? before.elements[*pair.before] : nullptr,
          pair.after ? after.elements[*pair.after] : nullptr};
}

}  // namespace

Comparison::Comparison(const Tree& before, const Tree& after, const Facts& facts, ComparisonOptions options)
    : m_before(before),
      m_after(after),
      m_options(options),
      m_digestsBefore(before, options.all),
      m_digestsAfter(after, options.all) {
  const Step root = {0, Facts::Step(facts), &before.root(), &after.root(), {}, nullptr};
  if (!isEqual(root)) {
    m_waiting.push_back(root);
  }
  while (!m_waiting.empty()) {
    const Step next = m_waiting.back();
    m_waiting.pop_back();
    visit(next);
  }
}

bool Comparison::isEqual(const Step& step) const {
  return step.before != nullptr && step.after != nullptr &&
         m_digestsBefore[*step.before] == m_digestsAfter[*step.after];
}

bool Comparison::counts(const Facts::Step& facts) const {
  const Fact* const fact = m_options.all ? nullptr : facts.fact();
  return fact == nullptr || !fact->isVolatile;
}

void Comparison::visit(const Step& step) {
  const auto number = static_cast<std::uint32_t>(m_steps.size());
  m_steps.push_back(step);
  const bool both = step.before != nullptr && step.after != nullptr && step.before->kind == step.after->kind;
  if (both && step.after->kind == NodeKind::object) {
    compareMembers(step, number);
  } else if (both && step.after->kind == NodeKind::array) {
    compareElements(step, number);
  } else {
    m_changes.push_back({step.before, step.after, number});
  }
}

void Comparison::compareMembers(const Step& step, std::uint32_t number) {
  const Side before = sideOf(m_before, m_digestsBefore, *step.before);
  const Side after = sideOf(m_after, m_digestsAfter, *step.after);
  const std::vector<Pair> pairs = pairsOf(memberNames(before), memberNames(after));
  for (auto pair = pairs.rbegin(); pair != pairs.rend(); ++pair) {
    const auto [old, now] = endsOf(*pair, before, after);
    Step member = {number, step.facts, old, now, {}, nullptr};
    if (isEqual(member)) {
      continue;
    }
    member.facts = step.facts.below((now == nullptr ? old : now)->key);
    if (counts(member.facts)) {
      m_waiting.push_back(member);
    }
  }
}

void Comparison::compareElements(const Step& step, std::uint32_t number) {
  const Side before = sideOf(m_before, m_digestsBefore, *step.before);
  const Side after = sideOf(m_after, m_digestsAfter, *step.after);
  const Names* naming = nullptr;
  const std::vector<Pair> pairs = pairElements(before, after, step, naming);
  const Facts::Step facts = step.facts.below("0");
  for (auto pair = pairs.rbegin(); pair != pairs.rend(); ++pair) {
    const auto [old, now] = endsOf(*pair, before, after);
    const Step element = {number, facts, old, now, *pair, naming};
    if (!isEqual(element) && counts(facts)) {
      m_waiting.push_back(element);
    }
  }
}

/// By the columns that name them, else by their values; one element each without any column is the same one.
std::vector<Pair> Comparison::pairElements(const Side& before, const Side& after, const Step& step,
                                           const Names*& naming) {
  const Rows rows(before, after);
  const Fact* const fact = step.facts.fact();
  const ColumnSet columns = namingColumns(rows, fact == nullptr ? std::vector<std::string>() : fact->names);
  std::vector<Digest> old(before.elements.size());
  std::vector<Digest> now(after.elements.size());
  if (!columns.empty()) {
    for (std::size_t row = 0; row < rows.count(); ++row) {
      (row < old.size() ? old[row] : now[row - old.size()]) = nameOf(rows, row, columns);
    }
    if (fact == nullptr || !fact->isContainer) {
      naming = &m_namings.emplace_back(namesOf(rows, columns));
    }
  } else if (old.size() != 1 || now.size() != 1) {
    old = valuesOf(before, step.facts.below("0"));
    now = valuesOf(after, step.facts.below("0"));
  }
  const std::vector<Pair> pairs = pairsOf(old, now);
  return m_options.all ? movedApart(pairs) : pairs;
}

/// What elements are but for the members that do not count.
std::vector<Digest> Comparison::valuesOf(const Side& side, const Facts::Step& facts) const {
  std::vector<Digest> values;
  values.reserve(side.elements.size());
  for (const Node* const element : side.elements) {
    Digest value = side.digests[*element];
    if (element->kind == NodeKind::object && facts.known()) {
      value = 0;
      for (const Node& member : side.tree.children(*element)) {
        value += counts(facts.below(member.key)) ? digestOf(nameOf(member), side.digests[member]) : 0;
      }
    }
    values.push_back(value);
  }
  return values;
}

Route Comparison::route(const Change& change) const {
  const bool inBefore = change.after == nullptr;
  Route route;
  for (std::uint32_t number = change.step; number != 0; number = m_steps[number].above) {
    const Step& step = m_steps[number];
    const Node& node = *(inBefore ? step.before : step.after);
    RouteStep next = {node.key, node.repeat, inBefore ? step.index.before : step.index.after, {}};
    if (step.naming != nullptr) {
      for (const std::string_view column : *step.naming) {
        next.row.push_back((inBefore ? m_before : m_after).member(node, column));
      }
    }
    route.push_back(std::move(next));
  }
  std::reverse(route.begin(), route.end());
  return route;
}

std::pair<const Node*, const Node*> Comparison::containers(const Change& change) const {
  if (change.step == 0) {
    return {nullptr, nullptr};
  }
  const Step& above = m_steps[m_steps[change.step].above];
  return {above.before, above.after};
}

std::string pointerOf(const Route& route) {
  std::string pointer;
  for (const RouteStep& step : route) {
    pointer += '/';
    if (step.index) {
      pointer += fmt::to_string(*step.index);
      continue;
    }
    appendToken(step.key, pointer);
    if (step.repeat > 1) {
      pointer += fmt::format("#{}", step.repeat);
    }
  }
  return pointer;
}

}  // namespace tarn
