#pragma once
/// The elements of two arrays as one table: what both sides have in common, as digests.
///
/// A column is a member that is a text or a scalar and that every row of both sides has. Where an element is
/// no object there are no columns.

#include <cstddef>
#include <string_view>
#include <vector>

#include "tarn/compare/tarn_compare_digest.h"

namespace tarn {

using Nodes = std::vector<const Node*>;

/// One side: a tree, its digests, and the elements of an array in it.
struct Side {
  const Tree& tree;
  const Digests& digests;
  Nodes elements;
};

class Rows {
 public:
  Rows(const Side& before, const Side& after);

  const std::vector<std::string_view>& columns() const { return m_columns; }
  /// Rows of OLD come first, then those of NEW.
  std::size_t before() const { return m_before.elements.size(); }
  std::size_t count() const { return before() + m_after.elements.size(); }

  Digest cell(std::size_t row, std::size_t column) const { return m_cells[row * m_columns.size() + column]; }
  /// The text of a cell; empty when there are no rows.
  std::string_view text(std::size_t row, std::size_t column) const;

 private:
  template <class Visit>
  void visitCells(const Visit& visit) const;
  void findColumns();
  void readCells();

  const Side& m_before;
  const Side& m_after;
  std::vector<std::string_view> m_columns;
  std::vector<Digest> m_cells;
};

}  // namespace tarn
