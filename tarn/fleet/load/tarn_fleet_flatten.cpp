#include "tarn/fleet/load/tarn_fleet_flatten.h"

#include <fmt/format.h>

#include <algorithm>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/document/tarn_document_words.h"

namespace tarn {

namespace {

bool isContainer(const Node& node) {
  return node.kind == NodeKind::object || node.kind == NodeKind::array;
}

bool isCell(const Node& member) {
  return member.repeat == 1 && !isContainer(member);
}

void appendCell(std::string_view column, std::string_view value, std::string& name) {
  name += name.empty() ? "" : ",";
  appendRowWord(column, name);
  name += '=';
  appendRowWord(value, name);
}

/// What names one row. Empty where nothing does.
class RowName {
 public:
  RowName(const Tree& tree, const Node& row, const KnownPlace& array)
      : m_tree(tree), m_row(row), m_array(array) {}

  std::string byTable() const {
    const Fact* const fact = m_array.step.fact();
    return fact == nullptr ? "" : byColumns(fact->names);
  }
  std::string byObjectify() const {
    const Node* const told = cell("TARN_OBJECTIFY");
    return told == nullptr ? "" : byColumns({std::string(told->text)});
  }
  std::string byAll() const {
    const Facts::Step row = m_array.step.below("*");
    std::string name;
    for (const Node& member : m_tree.children(m_row)) {
      if (isCell(member) && !isVolatile(row, member)) {
        appendCell(member.key, member.text, name);
      }
    }
    return name;
  }

 private:
  static bool isVolatile(const Facts::Step& row, const Node& member) {
    const Fact* const fact = row.known() ? row.below(member.key).fact() : nullptr;
    return fact != nullptr && fact->isVolatile;
  }

  const Node* cell(std::string_view column) const {
    for (const Node& member : m_tree.children(m_row)) {
      if (isCell(member) && sameWord(member.key, column)) {
        return &member;
      }
    }
    return nullptr;
  }

  std::string byColumns(const std::vector<std::string>& columns) const {
    std::string name;
    for (const std::string& column : columns) {
      const Node* const found = cell(column);
      if (found == nullptr) {
        return "";
      }
      appendCell(found->key, found->text, name);
    }
    return name;
  }

  const Tree& m_tree;
  const Node& m_row;
  const KnownPlace& m_array;
};

class Flattener {
 public:
  Flattener(const Tree& tree, FleetPlaces& places)
      : m_tree(tree), m_places(places), m_document(++places.root().document) {}

  FlatDocument run() {
    std::uint32_t index = 0;
    for (const Node& node : m_tree.nodes()) {
      while (!m_open.empty() && m_open.back().node->end == index) {
        m_open.pop_back();
      }
      take(node);
      ++index;
    }
    return std::move(m_result);
  }

 private:
  /// A container that is being read.
  struct Level {
    const Node* node;
    KnownPlace* place;
    std::uint32_t next;  ///< number of the next element
  };

  void take(const Node& node) {
    KnownPlace& place = m_open.empty() ? m_places.root() : placeIn(m_open.back(), node);
    if (!isContainer(node)) {
      tell(place, node.text);
    } else if (node.count == 0) {
      tell(place, node.kind == NodeKind::object ? "{}" : "[]");
    } else {
      m_open.push_back({&node, &place, 0});
    }
  }

  KnownPlace& placeIn(Level& level, const Node& node) {
    if (level.node->kind == NodeKind::object) {
      return m_places.member(*level.place, node.key, node.repeat);
    }
    const std::uint32_t number = level.next++;
    if (node.kind == NodeKind::array) {
      return m_places.element(*level.place, number);
    }
    return node.kind == NodeKind::object ? placeOfRow(*level.place, node, number)
                                         : placeOfCell(*level.place, node);
  }

  KnownPlace& placeOfCell(const KnownPlace& array, const Node& node) {
    std::string name = "=";
    appendRowWord(node.text, name);
    return onlyOne(array, name, false);
  }

  KnownPlace& placeOfRow(const KnownPlace& array, const Node& row, std::uint32_t number) {
    const RowName names(m_tree, row, array);
    std::string name = names.byTable();
    const bool isNamed = !name.empty();
    if (!isNamed && array.isVolatile) {
      return m_places.element(array, number);
    }
    name = isNamed ? name : names.byObjectify();
    const Fact* const fact = array.step.fact();
    const bool isScope = isNamed && fact->isContainer && array.scope == 0;
    KnownPlace& place = onlyOne(array, name.empty() ? names.byAll() : name, isScope);
    if (isScope) {
      m_result.scopes.push_back(&place);
    }
    return place;
  }

  /// The row of that name that this document has not had.
  KnownPlace& onlyOne(const KnownPlace& array, const std::string& name, bool isScope) {
    KnownPlace& first = m_places.row(array, name, isScope);
    KnownPlace* place = &first;
    while (place->document == m_document) {
      place = &m_places.row(array, fmt::format("{}#{}", name, ++first.rows), isScope);
    }
    place->document = m_document;
    place->rows = 1;
    return *place;
  }

  void tell(const KnownPlace& place, std::string_view text) {
    const std::size_t offset = m_result.texts.size();
    appendClean(text, m_result.texts);
    const std::string_view value = std::string_view(m_result.texts).substr(offset);
    (place.isVolatile ? m_result.latest : m_result.facts)
        .push_back({&place, sipHash(value), offset, value.size()});
  }

  const Tree& m_tree;
  FleetPlaces& m_places;
  const std::uint64_t m_document;  ///< tells it from others that the places have seen
  std::vector<Level> m_open;
  FlatDocument m_result;
};

}  // namespace

FlatDocument flattened(const Tree& tree, FleetPlaces& places) {
  return Flattener(tree, places).run();
}

}  // namespace tarn
