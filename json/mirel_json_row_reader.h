#pragma once
/// Reads the objects of an array that all have the same keys and nothing but texts straight into rows.
///
/// Most arrays are of this kind: what a query answered. The parser asks here first when it has read one such
/// object, and reads the next member by member when it is of another kind.

#include <memory>

#include "json/mirel_json_row.h"

class ObjectValue;

class RowReader {
 public:
  /// For objects like this one. Nothing is read when it has no members, members other than texts, or a key
  /// that is not written as it is.
  explicit RowReader(const ObjectValue& example);

  /// Reads the object whose opening brace is at `text`; false when it is of another kind. `end` ends the
  /// whole text.
  bool read(const char* text, const char* end);

  /// Of the object just read, after a `read` that was true: its row; what follows it; ...
  Row row() const;
  const char* after() const { return m_after; }
  /// ... the line feeds between its tokens, and what follows the last of them.
  unsigned long lines() const { return m_lines; }
  const char* lastLine() const { return m_lastLine; }

 private:
  std::shared_ptr<const RowColumns> m_columns;  ///< null when nothing is read
  RowValues m_values;
  const char* m_after = nullptr;
  unsigned long m_lines = 0;
  const char* m_lastLine = nullptr;
};
