#pragma once
/// Statements of clickhouse/*.sql that the program itself needs, and what comes back.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/fleet/clickhouse/tarn_fleet_http.h"
#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

/// What stands for each `{name}`: SQL already, such as lists of literals, and numbers.
using SqlParts = std::vector<std::pair<std::string, std::string>>;
std::string clickhouseStatement(std::string_view name, const SqlParts& parts = {});

/// Literals with commas between them.
template <class Items, class TextOf>
std::string listOf(const Items& items, const TextOf& textOf) {
  std::string list;
  for (const auto& item : items) {
    list += list.empty() ? "" : ", ";
    list += textOf(item);
  }
  return list;
}

/// The whole answer in memory.
HttpOutcome answerOf(FleetHttp* http, const std::string& statement, std::string* answer);

inline std::string_view bytesOf(const DocumentHash& hash) {
  return {reinterpret_cast<const char*>(hash.data()), hash.size()};
}

}  // namespace tarn
