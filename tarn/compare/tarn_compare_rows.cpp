#include "tarn/compare/tarn_compare_rows.h"

#include <algorithm>
#include <unordered_map>

namespace tarn {

namespace {

bool isCell(const Node& member) {
  return member.repeat == 1 && (member.kind == NodeKind::text || member.kind == NodeKind::scalar);
}

bool areObjects(const Nodes& elements) {
  return std::all_of(elements.begin(), elements.end(),
                     [](const Node* element) { return element->kind == NodeKind::object; });
}

/// Finds the column of a name; rows mostly have their members in one order.
class ColumnFinder {
 public:
  explicit ColumnFinder(const std::vector<std::string_view>& columns) : m_columns(columns) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      m_numbers.emplace(columns[column], column);
    }
  }

  void beginRow() { m_next = 0; }

  /// The number of columns when there is none of that name.
  std::size_t find(std::string_view name) {
    if (m_next < m_columns.size() && m_columns[m_next] == name) {
      return m_next++;
    }
    const auto found = m_numbers.find(name);
    if (found == m_numbers.end()) {
      return m_columns.size();
    }
    m_next = found->second + 1;
    return found->second;
  }

 private:
  const std::vector<std::string_view>& m_columns;
  std::unordered_map<std::string_view, std::size_t> m_numbers;
  std::size_t m_next = 0;
};

}  // namespace

Rows::Rows(const Side& before, const Side& after) : m_before(before), m_after(after) {
  if (count() > 0 && areObjects(before.elements) && areObjects(after.elements)) {
    findColumns();
    readCells();
  }
}

std::string_view Rows::text(std::size_t row, std::size_t column) const {
  const Side& side = row < before() ? m_before : m_after;
  const Node* const element = side.elements[row < before() ? row : row - before()];
  return side.tree.member(*element, m_columns[column])->text;
}

/// `visit(row, column, digest)` for what every row has of the columns.
template <class Visit>
void Rows::visitCells(const Visit& visit) const {
  ColumnFinder finder(m_columns);
  std::size_t row = 0;
  for (const Side* side : {&m_before, &m_after}) {
    for (const Node* const element : side->elements) {
      finder.beginRow();
      for (const Node& member : side->tree.children(*element)) {
        const std::size_t column = isCell(member) ? finder.find(member.key) : m_columns.size();
        if (column < m_columns.size()) {
          visit(row, column, side->digests[member]);
        }
      }
      ++row;
    }
  }
}

/// Those of the first row that no other row lacks: so the cells are never more than the members.
void Rows::findColumns() {
  const Side& side = m_after.elements.empty() ? m_before : m_after;
  for (const Node& member : side.tree.children(*side.elements.front())) {
    if (isCell(member)) {
      m_columns.push_back(member.key);
    }
  }
  std::vector<std::size_t> seen(m_columns.size());
  visitCells([&](std::size_t, std::size_t column, Digest) { ++seen[column]; });
  std::vector<std::string_view> shared;
  for (std::size_t column = 0; column < seen.size(); ++column) {
    if (seen[column] == count()) {
      shared.push_back(m_columns[column]);
    }
  }
  m_columns = std::move(shared);
}

void Rows::readCells() {
  m_cells.resize(count() * m_columns.size());
  visitCells([this](std::size_t row, std::size_t column, Digest digest) {
    m_cells[row * m_columns.size() + column] = digest;
  });
}

}  // namespace tarn
