#pragma once
/// The statements in sqlite/*.sql and clickhouse/*.sql, packed by the build, and how values come into them.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

struct PackedSql {
  std::string_view name;  ///< "sqlite/hosts"
  std::string_view text;
};
extern const std::vector<PackedSql> kPackedSql;

/// The text of a packed statement; empty when there is none of that name.
std::string_view packedSql(std::string_view name);

/// A text as a literal of the engine, with its quotes.
using QuoteSql = std::string (*)(std::string_view text);

/// The statement with each `{name}` of a value in its place, as a literal. What stands in a value is never
/// looked at again; braces around another word stay.
std::string filledSql(std::string_view statement,
                      const std::vector<std::pair<std::string, std::string>>& values, QuoteSql quote);

}  // namespace tarn
