#include "tarn/page/tarn_page_model.h"

#include <map>

#include "tarn/compare/tarn_compare_print.h"
#include "tarn/document/tarn_document_json.h"
#include "tarn/page/tarn_page_columns.h"

namespace tarn {

namespace {

constexpr int kDeepest = 64;  // containers within one another; what lies deeper goes as text

std::string nameOf(const Node& member) {
  return std::string(member.key) + (member.repeat > 1 ? "#" + std::to_string(member.repeat) : "");
}

/// The facts that the document has members for, numbered as they come.
class FactNumbers {
 public:
  void write(const Fact* fact, JsonText& json) {
    if (fact == nullptr) {
      json.raw("-1");
      return;
    }
    const auto [place, isNew] = m_numbers.try_emplace(fact, m_facts.size());
    if (isNew) {
      m_facts.push_back(fact);
    }
    json.element(std::uint64_t{place->second});
  }

  void writeAll(JsonText& json) const {
    json.array();
    for (const Fact* const fact : m_facts) {
      json.object().member("title", fact->title).member("meaning", fact->meaning);
      json.member("unit", wordOf(fact->unit)).key("chart").array();
      for (const std::string& word : fact->chart) {
        json.element(word);
      }
      json.end().end();
    }
    json.end();
  }

 private:
  std::map<const Fact*, std::size_t> m_numbers;
  std::vector<const Fact*> m_facts;
};

class Model {
 public:
  explicit Model(const Tree& tree) : m_tree(tree) {}

  void write(const Node& node, const Facts::Step& step, int depth, JsonText& json);
  const FactNumbers& facts() const { return m_facts; }

 private:
  void writeMembers(const Node& node, const Facts::Step& step, int depth, JsonText& json);
  void writeArray(const Node& node, const Facts::Step& step, int depth, JsonText& json);
  void writeColumns(const RowColumns& columns, const Facts::Step& step, JsonText& json);

  const Tree& m_tree;
  FactNumbers m_facts;
};

void Model::write(const Node& node, const Facts::Step& step, int depth, JsonText& json) {
  if (node.kind == NodeKind::text) {
    json.element(node.text);
  } else if (node.kind == NodeKind::scalar) {
    json.object().member("scalar", node.text).end();
  } else if (depth == kDeepest) {
    JsonText deep;
    appendValue(m_tree, &node, deep);
    json.object().member("deep", deep.text()).end();
  } else if (node.kind == NodeKind::object) {
    writeMembers(node, step, depth, json);
  } else {
    writeArray(node, step, depth, json);
  }
}

void Model::writeMembers(const Node& node, const Facts::Step& step, int depth, JsonText& json) {
  json.object().key("members").array();
  for (const Node& member : m_tree.children(node)) {
    const Facts::Step below = step.below(nameOf(member));
    json.array().element(nameOf(member));
    m_facts.write(below.fact(), json);
    write(member, below, depth + 1, json);
    json.end();
  }
  json.end().end();
}

void Model::writeArray(const Node& node, const Facts::Step& step, int depth, JsonText& json) {
  const RowColumns columns(m_tree, node);
  if (columns.areThere()) {
    writeColumns(columns, step.below("0"), json);
    return;
  }
  json.object().key("elements").array();
  for (const Node& element : m_tree.children(node)) {
    write(element, step.below("0"), depth + 1, json);
  }
  json.end().end();
}

void Model::writeColumns(const RowColumns& columns, const Facts::Step& step, JsonText& json) {
  json.object().key("columns").array();
  for (const std::string_view name : columns.names()) {
    json.array().element(name);
    m_facts.write(step.below(name).fact(), json);
    json.end();
  }
  json.end().member("rows", std::uint64_t{columns.rows()}).key("cells").array();
  for (std::size_t column = 0; column < columns.names().size(); ++column) {
    json.array();
    for (std::size_t row = 0; row < columns.rows(); ++row) {
      const Node* const cell = columns.cell(row, column);
      cell == nullptr ? json.null() : json.element(cell->text);
    }
    json.end();
  }
  json.end().end();
}

/// What the table of changes says of one; a listing has lines of its own.
struct Told {
  std::string change, way, before, after, pointer, lines;
};

std::string valueOf(const Tree& tree, const Node* node) {
  if (node == nullptr || node->kind == NodeKind::text || node->kind == NodeKind::scalar) {
    return node == nullptr ? "" : std::string(node->text);
  }
  JsonText json;
  appendValue(tree, node, json);
  return json.text();
}

/// Behind the head, each line without the two blanks before it.
std::string linesOf(const std::vector<Shown>& lines) {
  std::string text;
  for (std::size_t line = 1; line < lines.size(); ++line) {
    text += (text.empty() ? "" : "\n") + lines[line].text().substr(2);
  }
  return text;
}

Told told(const Comparison& comparison, const Change& change) {
  Route route = comparison.route(change);
  Told told = {std::string(wordOf(change)),
               shownRoute(route).text(),
               valueOf(comparison.before(), change.before),
               valueOf(comparison.after(), change.after),
               "",
               linesOf(printed(comparison, change))};
  if (change.after == nullptr && !route.empty()) {
    route.pop_back();  // what is gone is no place to go to
  }
  told.pointer = pointerOf(route);
  return told;
}

void writeTexts(const std::vector<Told>& rows, std::string Told::*text, JsonText& json) {
  json.array();
  for (const Told& row : rows) {
    json.element(row.*text);
  }
  json.end();
}

void writeChanges(const Comparison& comparison, JsonText& json) {
  std::vector<Told> rows;
  std::vector<Told> listings;
  for (const Change& change : comparison.changes()) {
    Told one = told(comparison, change);
    (one.lines.empty() ? rows : listings).push_back(std::move(one));
  }
  json.object().key("table").object().key("columns").array();
  for (const char* const name : {"Change", "Where", "Before", "After"}) {
    json.array().element(name).raw("-1").end();
  }
  json.end().member("rows", std::uint64_t{rows.size()}).key("cells").array();
  for (std::string Told::*const text : {&Told::change, &Told::way, &Told::before, &Told::after}) {
    writeTexts(rows, text, json);
  }
  json.end().end().key("pointers");
  writeTexts(rows, &Told::pointer, json);
  json.key("listings").array();
  for (const Told& listing : listings) {
    json.array().element(listing.way).element(listing.pointer).element(listing.lines).end();
  }
  json.end().end();
}

}  // namespace

std::string pageModel(const Tree& tree, const Facts& facts, const Comparison* changes) {
  Model model(tree);
  JsonText json;
  model.write(tree.root(), Facts::Step(facts), 0, json.object().key("root"));
  model.facts().writeAll(json.key("facts"));
  json.key("changes");
  if (changes == nullptr) {
    json.null();
  } else {
    writeChanges(*changes, json);
  }
  json.end();
  return json.text();
}

}  // namespace tarn
