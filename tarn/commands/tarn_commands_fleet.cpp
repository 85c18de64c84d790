#include "tarn/commands/tarn_commands_fleet.h"

#include <charconv>

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/fleet/tarn_fleet_time.h"

namespace tarn {

namespace {

std::optional<DocumentTime> dateOf(const std::string& text, Console& console) {
  const std::optional<DocumentTime> time = timeOf(text);
  if (!time) {
    console.trouble(say("\"{}\" is no date: write 2026-11-21 or 2026-11-21T10:20:30Z", shown(text)));
  }
  return time;
}

}  // namespace

void declareFleetDatabase(CommandLine& line, FleetOptions& options) {
  line.option("--from,--db,--into", options.database,
              "The database: a file, or clickhouse://HOST[:PORT]/DATABASE; when not given, TARN_FLEET of the "
              "environment")
      .type("DB")
      .environment("TARN_FLEET")
      .required();
}

void declareFleet(CommandLine& line, FleetOptions& options) {
  declareFleetDatabase(line, options);
  line.flag("--json", options.json, "One JSON object a line");
  line.flag("--sql", options.sql, "Print the statement that the database would be sent, and end");
}

FleetAsk::FleetAsk(const FleetOptions& options, Console& console) : m_options(options), m_console(console) {
  OpenedDatabase opened = openFleet(options.database, true);
  m_database = std::move(opened.database);
  if (opened.problem) {
    console.trouble(options.database, shown(*opened.problem));
  }
}

bool FleetAsk::ask(const FleetQuestion& question, const FleetDatabase::TakeRow& take) {
  if (!m_database) {
    return false;
  }
  if (m_options.sql) {
    m_console.line(shownLines(m_database->sql(question)));
    return false;
  }
  const FleetProblem problem = m_database->ask(question, take);
  if (problem) {
    m_console.trouble(m_options.database, shown(*problem));
  }
  return !problem;
}

std::uint64_t countOf(std::string_view cell) {
  std::uint64_t count = 0;
  std::from_chars(cell.data(), cell.data() + cell.size(), count);
  return count;
}

Moment momentOf(std::string_view cell) {
  Moment moment = 0;
  std::from_chars(cell.data(), cell.data() + cell.size(), moment);
  return moment;
}

std::optional<std::string> timeText(Moment moment) {
  return moment == 0 ? std::nullopt : std::optional(rfc3339(moment));
}

std::optional<std::string> someText(std::string_view cell) {
  return cell.empty() ? std::nullopt : std::optional(std::string(cell));
}

std::optional<Moment> beginningOf(const std::string& date, Console& console) {
  const std::optional<DocumentTime> time = dateOf(date, console);
  return time ? std::optional(time->seconds * kMomentsPerSecond) : std::nullopt;
}

std::optional<Moment> endOf(const std::string& date, Console& console) {
  const std::optional<DocumentTime> time = dateOf(date, console);
  return time ? std::optional((time->seconds + (time->isDate ? kSecondsPerDay : 1)) * kMomentsPerSecond - 1)
              : std::nullopt;
}

Shown counted(std::uint64_t count, const char* noun) {
  return say("{} {}{}", count, shown(noun), shown(count == 1 ? "" : "s"));
}

}  // namespace tarn
