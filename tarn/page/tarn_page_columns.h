#pragma once
/// An array of rows seen as columns: every name that a row has is one.

#include <string>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_tree.h"

namespace tarn {

class RowColumns {
 public:
  /// There are none when an element is no object or holds a container or a name twice, when no row has a
  /// member, and when rows have so little in common that most cells would be empty.
  RowColumns(const Tree& tree, const Node& array);

  bool areThere() const { return !m_names.empty(); }
  const std::vector<std::string_view>& names() const { return m_names; }
  std::size_t rows() const { return m_rows; }
  /// Null where the row has no such member.
  const Node* cell(std::size_t row, std::size_t column) const {
    return m_cells[row * m_names.size() + column];
  }

 private:
  bool findNames(const Tree& tree, const Node& array);
  void findCells(const Tree& tree, const Node& array);

  std::vector<std::string_view> m_names;
  std::size_t m_rows;
  std::vector<const Node*> m_cells;
};

}  // namespace tarn
