#pragma once
/// A row of a query in its compact form: one text for all values instead of a tree node for each.
///
/// A catalog may answer with a million rows, and most of them are only ever written out. An `ObjectValue`
/// made of a row turns it into members when somebody asks for them; until then it takes a tenth of the
/// memory.

#include <memory>
#include <utility>
#include <vector>

#include "common/mirel_string.h"

class mirel_string_builder;

/// The columns that all rows of one result share.
class RowColumns {
 public:
  explicit RowColumns(std::vector<mirel_string> names);

  const std::vector<mirel_string>& names() const { return m_names; }
  /// A column's key as it is written: escaped, in quotes, with its colon.
  const mirel_string& head(unsigned long column) const { return m_heads[column]; }

 private:
  std::vector<mirel_string> m_names;
  std::vector<mirel_string> m_heads;
};

/// One row: a value for every column.
class Row {
 public:
  /// The values stand one after the other with a blank between them; none of them holds a blank.
  Row(std::shared_ptr<const RowColumns> columns, mirel_string values)
      : m_columns(std::move(columns)), m_values(std::move(values)) {}

  /// Calls `action` with the number of each column, counted from 0, and its value: begin and length.
  template <class Action>
  void forEach(Action action) const;

  const RowColumns& columns() const { return *m_columns; }

 private:
  std::shared_ptr<const RowColumns> m_columns;
  mirel_string m_values;
};

template <class Action>
void Row::forEach(Action action) const {
  const char* value = m_values.c_str();
  for (unsigned long column = 0; column < m_columns->names().size(); ++column) {
    unsigned long length = 0;
    while (value[length] != ' ' && value[length] != '\0') {
      ++length;
    }
    action(column, value, length);
    value += value[length] == ' ' ? length + 1 : length;
  }
}
