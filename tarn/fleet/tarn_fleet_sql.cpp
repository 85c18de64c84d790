#include "tarn/fleet/tarn_fleet_sql.h"

#include <algorithm>

namespace tarn {

std::string_view packedSql(std::string_view name) {
  const auto found = std::find_if(kPackedSql.begin(), kPackedSql.end(),
                                  [name](const PackedSql& packed) { return packed.name == name; });
  return found == kPackedSql.end() ? "" : found->text;
}

std::string filledSql(std::string_view statement,
                      const std::vector<std::pair<std::string, std::string>>& values, QuoteSql quote) {
  std::string filled;
  while (!statement.empty()) {
    const std::size_t brace = std::min(statement.find('{'), statement.size());
    filled += statement.substr(0, brace);
    statement.remove_prefix(brace);
    const std::string_view word = statement.substr(0, statement.find('}')).substr(statement.empty() ? 0 : 1);
    const auto value =
        std::find_if(values.begin(), values.end(), [word](const auto& known) { return known.first == word; });
    if (value != values.end()) {
      filled += quote(value->second);
      statement.remove_prefix(word.size() + 2);
    } else if (!statement.empty()) {
      filled += '{';
      statement.remove_prefix(1);
    }
  }
  return filled;
}

}  // namespace tarn
