#pragma once
/// What there is to say about the rows of one query: how many, which values were cut, what is NULL.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class RowNotes {
 public:
  void query() { m_isQuery = true; }
  void column(const char* name) { m_columns.push_back({name}); }
  void row() { ++m_rows; }
  /// A value of column `number` (from 1). True when the bytes behind it are wanted.
  bool value(unsigned number, std::string_view text, bool isNull, bool isCut);
  void rest(std::string_view text);

  /// A sentence each. `wanted` is the column of `sql value`, empty for the other kinds.
  std::vector<std::string> notes(std::string_view kind, const std::string& wanted) const;

 private:
  struct Column {
    std::string name;
    std::size_t nulls = 0, atBlank = 0, atEnd = 0;
    std::string cut = {};  ///< the first value that was cut, as it was
  };

  void missing(const std::string& wanted, std::vector<std::string>& notes) const;

  std::vector<Column> m_columns;
  std::size_t m_rows = 0;
  Column* m_current = nullptr;
  bool m_isQuery = false;
};

}  // namespace tarn
