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

/// One row: a value for every column. `RowValues` makes them.
class Row {
 public:
  const RowColumns& columns() const { return *m_columns; }
  /// The values, one a column, with their escapes undone.
  std::vector<mirel_string> values() const;
  /// Appends the members as an object writes them, each with its separator; `indent` levels deep.
  void write(mirel_string_builder& out, unsigned long indent) const;

 private:
  friend class RowValues;
  Row(std::shared_ptr<const RowColumns> columns, mirel_string values)
      : m_columns(std::move(columns)), m_values(std::move(values)) {}

  std::shared_ptr<const RowColumns> m_columns;
  /// One after the other, escaped as they are written, with a line feed between them: no escaped text has
  /// one.
  mirel_string m_values;
};

/// Gathers the values of one row after the other.
class RowValues {
 public:
  void clear() { m_values.clear(); }
  void append(const char* text, unsigned long length);
  /// The same for a text that is known to be written as it is.
  void appendPlain(const char* text, unsigned long length) {
    m_values.insert(m_values.end(), text, text + length);
    m_values.push_back('\n');
  }
  /// The row of what was appended since `clear`, a value for each of the columns.
  Row row(std::shared_ptr<const RowColumns> columns) const;

 private:
  std::vector<char> m_values;  ///< a line feed behind each
};
