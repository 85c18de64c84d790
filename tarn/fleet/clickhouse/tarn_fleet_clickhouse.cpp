#include "tarn/fleet/clickhouse/tarn_fleet_clickhouse.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "tarn/fleet/clickhouse/tarn_fleet_literal.h"
#include "tarn/fleet/clickhouse/tarn_fleet_statement.h"
#include "tarn/fleet/clickhouse/tarn_fleet_tabs.h"
#include "tarn/fleet/tarn_fleet_sql.h"

namespace tarn {

namespace {

constexpr int kUnknownTable = 60;
constexpr int kUnknownDatabase = 81;
constexpr int kWrongLogin[] = {192, 193, 194, 516};

constexpr std::string_view kScheme = "clickhouse://";

struct Name {
  std::string address;  ///< `HOST:PORT`
  std::string database;
};

bool consistsOf(std::string_view text, std::string_view others) {
  return !text.empty() && std::ranges::all_of(text, [others](unsigned char byte) {
    return byte < 0x80 &&
           (isalnum(byte) != 0 || others.find(static_cast<char>(byte)) != std::string_view::npos);
  });
}

bool hasPort(const std::string& address) {
  return address.rfind(':') != std::string::npos && !address.ends_with(']');
}

std::optional<Name> nameIn(std::string_view text) {
  text.remove_prefix(kScheme.size());
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) {
    return std::nullopt;
  }
  Name name = {std::string(text.substr(0, slash)), std::string(text.substr(slash + 1))};
  if (!consistsOf(name.address, "-._:[]") || !consistsOf(name.database, "_")) {
    return std::nullopt;
  }
  name.address += hasPort(name.address) ? "" : ":8123";
  return name;
}

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

bool isClickhouse(const std::string& name) {
  return name.starts_with(kScheme);
}

OpenedDatabase openClickhouse(const std::string& name, bool mustExist) {
  const std::optional<Name> parts = nameIn(name);
  if (!parts) {
    return {nullptr, "a database is named clickhouse://HOST[:PORT]/DATABASE, of letters, digits and _"};
  }
  const FleetHttp::Server server = {parts->address, environment("TARN_FLEET_USER"),
                                    environment("TARN_FLEET_PASSWORD")};
  auto database = std::make_unique<ClickhouseDatabase>(server, parts->database);
  FleetProblem problem = mustExist ? database->check() : std::nullopt;
  if (problem) {
    database.reset();
  }
  return {std::move(database), std::move(problem)};
}

ClickhouseDatabase::ClickhouseDatabase(const FleetHttp::Server& server, std::string database)
    : m_http(server), m_claim(&m_http), m_database(std::move(database)) {
  m_http.setDatabase(m_database);
}

/// In words of ours where the server's would not tell what to do.
FleetProblem ClickhouseDatabase::told(const HttpOutcome& outcome) const {
  if (!outcome) {
    return std::nullopt;
  }
  if (outcome->code == kUnknownDatabase) {
    return fmt::format("there is no database {}", m_database);
  }
  const bool isLogin = std::ranges::find(kWrongLogin, outcome->code) != std::end(kWrongLogin);
  return isLogin ? "wrong user or password (TARN_FLEET_USER, TARN_FLEET_PASSWORD)" : outcome->text;
}

FleetProblem ClickhouseDatabase::check() {
  std::string form;
  const HttpOutcome problem = answerOf(&m_http, "SELECT form FROM tarn_fleet", &form);
  if (problem && problem->code == kUnknownTable) {
    return fmt::format("the database {} is not one of a fleet", m_database);
  }
  if (!problem && form != "1\n") {
    return fmt::format("the database {} has a form that this version does not know", m_database);
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
  HttpOutcome problem = m_claim.take(waiting);
  problem = problem ? problem : finishOthersWork();
  m_isWhole = true;
  return told(problem ? problem : m_claim.dropOlder());
}

/// Questions read what a loader writes second.
HttpOutcome ClickhouseDatabase::finishOthersWork() {
  const std::uint64_t oldest = m_claim.oldestHeld();
  return oldest == m_claim.number()
             ? std::nullopt
             : m_http.ask(clickhouseStatement("finish", {{"version", std::to_string(oldest)}}));
}

FleetProblem ClickhouseDatabase::unlock() {
  FleetProblem problem = writeMoved();
  problem = problem ? problem : writeCopies();
  if (!m_isWhole) {
    return problem;  // the claim tells the next loader
  }
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
