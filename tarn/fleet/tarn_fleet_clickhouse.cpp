#include "tarn/fleet/tarn_fleet_clickhouse.h"

#include <fmt/format.h>

#include <algorithm>

#include "tarn/fleet/tarn_fleet_literal.h"
#include "tarn/fleet/tarn_fleet_sql.h"
#include "tarn/fleet/tarn_fleet_statement.h"
#include "tarn/fleet/tarn_fleet_tabs.h"

namespace tarn {

namespace {

constexpr int kUnknownTable = 60;
constexpr int kUnknownDatabase = 81;
constexpr int kWrongLogin[] = {192, 193, 194, 516};

}  // namespace

std::optional<ClickhouseName> clickhouseName(std::string_view text) {
  constexpr std::string_view kScheme = "clickhouse://";
  if (!text.starts_with(kScheme)) {
    return std::nullopt;
  }
  text.remove_prefix(kScheme.size());
  const std::size_t slash = std::min(text.find('/'), text.size());
  ClickhouseName name = {std::string(text.substr(0, slash)), ""};
  const std::size_t colon = name.address.rfind(':');
  if (colon == std::string::npos || name.address.ends_with(']')) {
    name.address += ":8123";
  }
  const std::string_view database = text.substr(std::min(slash + 1, text.size()));
  const auto isNamePart = [](char letter) {
    return isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
  };
  const auto isAddressPart = [&](char letter) {
    return isNamePart(letter) || std::string_view("-.:[]").find(letter) != std::string_view::npos;
  };
  if (slash != 0 && std::ranges::all_of(name.address, isAddressPart) &&
      std::ranges::all_of(database, isNamePart)) {
    name.database = database;
  }
  return name;
}

ClickhouseDatabase::ClickhouseDatabase(const FleetHttp::Server& server, std::string database)
    : m_http(server), m_claim(&m_http), m_address(server.address), m_database(std::move(database)) {
  m_http.setDatabase(m_database);
}

/// In words of ours where the server's would not tell what to do.
FleetProblem ClickhouseDatabase::told(const HttpOutcome& outcome) const {
  if (!outcome) {
    return std::nullopt;
  }
  std::string text = outcome->text;
  if (outcome->code == kUnknownDatabase) {
    text = fmt::format("there is no database {}", m_database);
  } else if (std::ranges::find(kWrongLogin, outcome->code) != std::end(kWrongLogin)) {
    text = "wrong user or password (TARN_FLEET_USER, TARN_FLEET_PASSWORD)";
  }
  return fmt::format("{}: {}", m_address, text);
}

FleetProblem ClickhouseDatabase::check() {
  std::string form;
  const HttpOutcome problem = answerOf(&m_http, "SELECT form FROM tarn_fleet", &form);
  if (problem && problem->code == kUnknownTable) {
    return fmt::format("{}: the database {} is not one of a fleet", m_address, m_database);
  }
  if (!problem && form != "1\n") {
    return fmt::format("{}: the database {} has a form that this version does not know", m_address,
                       m_database);
  }
  return told(problem);
}

FleetProblem ClickhouseDatabase::create() {
  std::string tables;
  HttpOutcome problem = answerOf(&m_http, "SHOW TABLES", &tables);
  if (problem && problem->code == kUnknownDatabase) {
    m_http.setDatabase("");
    problem = m_http.ask(fmt::format("CREATE DATABASE IF NOT EXISTS `{}`", m_database));
    m_http.setDatabase(m_database);
  }
  if (problem) {
    return told(problem);
  }
  // A loader may have been killed behind the first table.
  FleetProblem other = tables.empty() ? std::nullopt : check();
  return other ? other : makeTables();
}

FleetProblem ClickhouseDatabase::makeTables() {
  constexpr std::string_view kEnd = ";\n";
  HttpOutcome problem;
  std::string_view schema = packedSql("clickhouse/schema");
  for (std::size_t end = 0; !problem && (end = schema.find(kEnd)) != std::string_view::npos;
       schema.remove_prefix(end + kEnd.size())) {
    problem = m_http.ask(schema.substr(0, end));
  }
  return told(problem);
}

FleetProblem ClickhouseDatabase::lock(const std::function<bool()>& waiting) {
  return told(m_claim.take(waiting));
}

FleetProblem ClickhouseDatabase::unlock() {
  FleetProblem problem = writeMoved();
  FleetProblem other = told(m_claim.giveBack());
  return problem ? problem : other;
}

FleetProblem ClickhouseDatabase::ask(const FleetQuestion& question, const TakeRow& take) {
  TabRows rows(take);
  return told(m_http.ask(sql(question), [&rows](std::string_view bytes) { return rows.add(bytes); }));
}

std::string ClickhouseDatabase::sql(const FleetQuestion& question) const {
  return filledSql(packedSql("clickhouse/" + question.name), question.values, clickhouseLiteral);
}

}  // namespace tarn
