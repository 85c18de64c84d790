#include "tarn/show/tarn_show_brief.h"

#include <algorithm>

#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

constexpr std::size_t kElementsAtMost = 5;  // of a container, each with a line of its own
constexpr std::size_t kBytesAtMost = 200;   // of a value

class Briefs {
 public:
  Briefs(const Tree& tree, const Facts& facts) : m_tree(tree), m_facts(facts) {}

  std::vector<Labelled> read() {
    for (const Fact& fact : m_facts.all()) {
      if (fact.isContainer) {
        container(fact);
      } else if (!fact.brief.group.empty() || fact.brief.low > 0) {
        member(fact);
      }
    }
    if (!m_low.text.text().empty()) {
      m_lines.push_back(m_low);
    }
    return std::move(m_lines);
  }

 private:
  /// Why there is nothing in it.
  void container(const Fact& fact) {
    const Node* const node = m_tree.find(fact.place);
    if (node != nullptr && isSilent(*node) && !fact.ifNone.empty()) {
      add(shown(fact.title), shown(fact.ifNone));
    }
  }

  /// The member, or that of each element.
  void member(const Fact& fact) {
    const std::size_t star = fact.place.find("/*/");
    if (star == std::string::npos) {
      value(fact, m_tree.find(fact.place), shown(fact.brief.group));
      return;
    }
    const std::string place = fact.place.substr(0, star);
    const Node* const array = m_tree.find(place);
    if (array == nullptr || array->kind != NodeKind::array) {
      return;
    }
    const std::string below = fact.place.substr(star + 2);
    for (std::size_t i = 0; i < std::min<std::size_t>(array->count, kElementsAtMost); ++i) {
      const std::string element = place + "/" + std::to_string(i);
      value(fact, m_tree.find(element + below), labelOf(fact, *array, place, element));
    }
    if (array->count > kElementsAtMost && find(shown(fact.brief.group)) == m_lines.end()) {
      add(shown(fact.brief.group), say("{} more", array->count - kElementsAtMost));
    }
  }

  /// One of several elements is told by its name.
  Shown labelOf(const Fact& fact, const Node& array, const std::string& place, const std::string& element) {
    const Fact* const whole = m_facts.find(place);
    const bool isNamed = array.count > 1 && whole != nullptr && !whole->names.empty();
    const Node* const name = isNamed ? m_tree.find(element + "/" + whole->names[0]) : nullptr;
    const Shown group = shown(fact.brief.group);
    return name == nullptr ? group
                           : fitted(say("{} {}", group, shown(name->text.substr(0, kBytesAtMost))), 30);
  }

  void value(const Fact& fact, const Node* node, const Shown& label) {
    if (node == nullptr || isSilent(*node) || node->count > 0 || node->text == "NULL") {
      return;
    }
    const double part = partOf(m_tree, *node, fact);
    if (!fact.chart.empty() && part < 0) {
      return;
    }
    const Shown text = part < 0 ? brieflyOf(node->text.substr(0, kBytesAtMost), fact.unit) : percentOf(part);
    if (!label.text().empty()) {
      add(label, shown(fact.brief.before) + text + shown(fact.brief.behind));
    }
    if (part >= 0 && part * 100 < fact.brief.low) {
      join(m_low, say("{} {}", shown(fact.title), text));
    }
  }

  std::vector<Labelled>::iterator find(const Shown& label) {
    return std::find_if(m_lines.begin(), m_lines.end(),
                        [&label](const Labelled& line) { return line.label.text() == label.text(); });
  }

  void add(const Shown& label, const Shown& text) {
    auto line = find(label);
    if (line == m_lines.end()) {
      line = m_lines.insert(line, {label, {}});
    }
    join(*line, text);
  }

  static void join(Labelled& line, const Shown& text) {
    line.text += line.text.text().empty() ? text : ", " + text;
  }

  const Tree& m_tree;
  const Facts& m_facts;
  std::vector<Labelled> m_lines;
  Labelled m_low = {"Low", {}};
};

}  // namespace

std::vector<Labelled> briefOf(const Tree& tree, const Facts& facts) {
  return tree.empty() ? std::vector<Labelled>() : Briefs(tree, facts).read();
}

std::vector<std::string> missingNeeds(const Tree& tree, const Facts& facts) {
  std::vector<std::string> missing;
  for (const Fact& fact : facts.all()) {
    if (fact.needs.empty() || std::find(missing.begin(), missing.end(), fact.needs) != missing.end()) {
      continue;
    }
    const Node* const node = tree.empty() ? nullptr : tree.find(fact.needs);
    if (node != nullptr && isSilent(*node)) {
      missing.push_back(fact.needs);
    }
  }
  return missing;
}

}  // namespace tarn
