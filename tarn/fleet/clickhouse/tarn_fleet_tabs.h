#pragma once
/// ClickHouse's TabSeparated: a row a line, with escapes; it comes in pieces.

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TabRows {
 public:
  /// Is given each row; false ends it. A null is a text without `data()`.
  using TakeRow = std::function<bool(std::span<const std::string_view> row)>;
  explicit TabRows(const TakeRow& take) : m_take(take) {}

  /// The next piece. False once `take` wants no more.
  bool add(std::string_view piece);

 private:
  bool line(std::string_view line);

  const TakeRow& m_take;
  std::string m_begun;  ///< a line of which the end has not come
  std::string m_texts;  ///< of the row, without escapes
  std::vector<std::string_view> m_row;
};

}  // namespace tarn
