#pragma once
/// An object of texts in its compact form: one text for all values instead of a tree node for each.
///
/// A catalog may answer with a million rows, and most of them are only ever written out. An `ObjectValue`
/// made of a row turns it into members when somebody asks for them; until then it takes a tenth of the
/// memory, and writing it is copying.

#include <memory>
#include <utility>
#include <vector>

#include "common/mirel_string.h"

class mirel_string_builder;

/// The keys that all rows of one array share.
class RowColumns {
 public:
  explicit RowColumns(std::vector<mirel_string> names);

  const std::vector<mirel_string>& names() const { return m_names; }
  /// What stands before a column's value: its key, escaped and in quotes, the colon and the opening quote.
  const mirel_string& head(unsigned long column) const { return m_heads[column]; }
  /// The length of all heads together.
  unsigned long headsLength() const { return m_headsLength; }

 private:
  std::vector<mirel_string> m_names;
  std::vector<mirel_string> m_heads;
  unsigned long m_headsLength = 0;
};

/// One row: a value for every column.
class Row {
 public:
  /// The values stand one after the other, escaped as they are written, with a line feed between them: no
  /// escaped text holds one.
  Row(std::shared_ptr<const RowColumns> columns, mirel_string values)
      : m_columns(std::move(columns)), m_values(std::move(values)) {}

  const RowColumns& columns() const { return *m_columns; }
  /// A column's value, counted from 0, with its escapes undone. Linear in the row's length.
  std::vector<mirel_string> values() const;
  /// Appends the members as an object writes them, each with its separator; `indent` levels deep.
  void write(mirel_string_builder& out, unsigned long indent) const;

 private:
  std::shared_ptr<const RowColumns> m_columns;
  mirel_string m_values;
};
