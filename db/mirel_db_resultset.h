#pragma once

#include <vector>

#include "common/mirel_string.h"
#include "json/mirel_json_folded.h"
#include "platform/sqlcli.h"

class ObjectValue;

/// The columns and rows of an executed statement, which it does not own.
///
///     ResultSet result(statement);
///     result.getCols();
///     for (ObjectValue* row = result.fetch(); !result.done(); row = result.fetch()) ...
///
/// Every value is text of at most 127 bytes, cut at its first blank; SQL NULL is the text "NULL". The cut
/// removes the padding of fixed-width columns, and everything behind the first word of any value.
class ResultSet {
 public:
  explicit ResultSet(SQLHANDLE statement);

  /// Reads the columns' names, which end after 127 bytes.
  void getCols();

  /// The next row, owned by the caller: a member per column, in column order, but for columns whose value
  /// cannot be read. An empty row at the end, and `done` is true.
  ObjectValue* fetch();
  bool done() const { return m_done; }

 private:
  void readColumn(unsigned short column);

  short m_cols = 0;
  bool m_done = false;
  unsigned long m_rows = 0;
  SQLHANDLE m_stmt;
  std::vector<mirel_string> m_names;
  std::vector<unsigned int> m_sizes;
  MemberLines m_row;  ///< the current one
};
