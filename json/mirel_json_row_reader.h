#pragma once
/// Reads the objects of an array that all have the same keys and nothing but texts straight into rows.
///
/// Most arrays are of this kind: what a query answered. The parser asks here first, and reads the object
/// member by member when it is of another kind.

#include <memory>
#include <vector>

#include "json/mirel_json_row.h"

class ObjectValue;

class RowReader {
 public:
  /// For objects like this one. Nothing is read when it has no members, others than texts, or a key that is
  /// not written as it is.
  explicit RowReader(const ObjectValue& example);

  /// Reads the object whose opening brace is at `text`; false when it is of another kind. `end` ends the
  /// whole text.
  bool read(const char* text, const char* end);

  /// Of the object just read: its row; what follows it; ...
  Row row() const;
  const char* after() const { return m_after; }
  /// ... the line feeds between its tokens, and what follows the last of them.
  unsigned long lines() const { return m_lines; }
  const char* lastLine() const { return m_lastLine; }

 private:
  void append(const char* value, unsigned long length);

  std::shared_ptr<const RowColumns> m_columns;  ///< null when nothing is read
  std::vector<char> m_values;                   ///< as a row holds them
  const char* m_after = nullptr;
  unsigned long m_lines = 0;
  const char* m_lastLine = nullptr;
};
