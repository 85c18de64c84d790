#include "tarn/page/tarn_page_columns.h"

#include <unordered_map>

#include "tarn/compare/tarn_compare_digest.h"

namespace tarn {

namespace {

constexpr std::size_t kCellsForMember = 4;
constexpr std::size_t kCellsForNothing = 1000;

bool isCell(const Node& member) {
  return member.repeat == 1 && (member.kind == NodeKind::text || member.kind == NodeKind::scalar);
}

}  // namespace

RowColumns::RowColumns(const Tree& tree, const Node& array) : m_rows(array.count) {
  if (findNames(tree, array)) {
    findCells(tree, array);
  } else {
    m_names.clear();
  }
}

bool RowColumns::findNames(const Tree& tree, const Node& array) {
  std::unordered_map<Digest, std::size_t> known;
  std::size_t members = 0;
  for (const Node& row : tree.children(array)) {
    if (row.kind != NodeKind::object) {
      return false;
    }
    for (const Node& member : tree.children(row)) {
      if (!isCell(member)) {
        return false;
      }
      ++members;
      if (known.try_emplace(digestOf(member.key), m_names.size()).second) {
        m_names.push_back(member.key);
      }
    }
  }
  return m_names.size() * m_rows <= members * kCellsForMember + kCellsForNothing;
}

/// Rows mostly have their members in one order.
void RowColumns::findCells(const Tree& tree, const Node& array) {
  std::unordered_map<std::string_view, std::size_t> numbers;
  for (std::size_t column = 0; column < m_names.size(); ++column) {
    numbers.emplace(m_names[column], column);
  }
  m_cells.resize(m_rows * m_names.size());
  std::size_t first = 0;
  for (const Node& row : tree.children(array)) {
    std::size_t next = 0;
    for (const Node& member : tree.children(row)) {
      const bool isNext = next < m_names.size() && m_names[next] == member.key;
      next = isNext ? next : numbers.find(member.key)->second;
      m_cells[first + next++] = &member;
    }
    first += m_names.size();
  }
}

}  // namespace tarn
