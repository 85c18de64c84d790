#include "tarn/fleet/clickhouse/tarn_fleet_statement.h"

#include <fmt/format.h>

#include "tarn/fleet/tarn_fleet_sql.h"

namespace tarn {

std::string clickhouseStatement(std::string_view name, const SqlParts& parts) {
  return filledSql(packedSql(fmt::format("clickhouse/{}", name)), parts,
                   [](std::string_view part) { return std::string(part); });
}

HttpOutcome answerOf(FleetHttp* http, const std::string& statement, std::string* answer) {
  answer->clear();
  return http->ask(statement, [answer](std::string_view bytes) {
    answer->append(bytes);
    return true;
  });
}

}  // namespace tarn
