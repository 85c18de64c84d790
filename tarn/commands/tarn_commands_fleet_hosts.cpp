#include <limits>

#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"

namespace tarn {

namespace {

struct HostsOptions {
  FleetOptions fleet;
  std::optional<double> silentFor;
  bool problems = false;
};

constexpr Member<FleetHost> kHostMembers[] = {
    {"host", "Name of the host.", [](const FleetHost& host, JsonText& json) { json.element(host.name); }},
    {"time", "Of its newest document, in UTC; null when nothing tells.",
     [](const FleetHost& host, JsonText& json) { json.element(timeText(host.moment)); }},
    {"state", "\"whole\", \"cut\", \"damaged\" or \"foreign\".",
     [](const FleetHost& host, JsonText& json) { json.element(host.state); }},
    {"problem", "Why the document's facts were not taken, as hosts --problems tells it; null when they were.",
     [](const FleetHost& host, JsonText& json) { json.element(host.problem); }},
    {"engine", "Name of the database engine, or null.",
     [](const FleetHost& host, JsonText& json) { json.element(host.engine); }},
    {"version", "Its version, or null.",
     [](const FleetHost& host, JsonText& json) { json.element(host.version); }},
    {"database", "Name of the database, or null.",
     [](const FleetHost& host, JsonText& json) { json.element(host.database); }},
    {"answered", "How many members answered.",
     [](const FleetHost& host, JsonText& json) { json.element(host.answered); }},
    {"asked", "How many members were asked.",
     [](const FleetHost& host, JsonText& json) { json.element(host.asked); }},
    {"documents", "How many documents there are of the host.",
     [](const FleetHost& host, JsonText& json) { json.element(host.documents); }},
    {"file", "The newest document's file.",
     [](const FleetHost& host, JsonText& json) { json.element(host.file); }}};

constexpr Member<FleetTrouble> kProblemMembers[] = {
    {"file", "The document's file.",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.file); }},
    {"host", "The host that it names, or null.",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.host); }},
    {"time", "Its time, or null.",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(timeText(trouble.moment)); }},
    {"state", "As above.", [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.state); }},
    {"problem",
     "\"not whole\", \"no host\", \"no time\", \"future\" (more than a day ahead of the loader's clock), "
     "\"large\" (more than 64 MiB, or than a million values), \"other host\" (the server's log knows another "
     "one), or \"same moment\" (the host has another document of that very moment).",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.problem); }},
    {"line", "Where a document that is not whole ends or breaks; null for others.",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.line); }},
    {"column", "The column there.",
     [](const FleetTrouble& trouble, JsonText& json) { json.element(trouble.column); }}};

/// Why its facts were not taken, else what it is.
Shown conditionOf(const FleetHost& host) {
  return shown(host.problem.value_or(host.state));
}

void addRow(const FleetHost& host, Columns& columns) {
  columns.row({shown(host.name), orDash(timeText(host.moment)), conditionOf(host),
               engineCell(host.engine, host.version), orDash(host.database),
               counted(host.documents, "document"), say("{} of {} answered", host.answered, host.asked)});
}

Outcome listHosts(const HostsOptions& options, FleetAsk& fleet, Console& console) {
  const Moment before =
      options.silentFor ? momentBefore(*options.silentFor) : std::numeric_limits<Moment>::max();
  Outcome outcome = Outcome::nothing;
  Columns columns(console, Columns::Wide::isCut);
  fleet.ask(hostsQuestion(), [&](FleetRow row) {
    const FleetHost host = fleetHost(row);
    if (host.moment < before) {
      options.fleet.json ? console.bytes(asJsonLine(kHostMembers, host)) : addRow(host, columns);
      outcome = options.silentFor ? Outcome::something : Outcome::nothing;
    }
    return true;
  });
  return outcome;
}

void addRow(const FleetTrouble& trouble, Columns& columns) {
  const Shown place = trouble.line ? say(":{}:{}", *trouble.line, *trouble.column) : Shown();
  columns.row({shown(trouble.problem), shown(trouble.state), orDash(trouble.host),
               orDash(timeText(trouble.moment)), shown(trouble.file) + place});
}

Outcome listProblems(const HostsOptions& options, FleetAsk& fleet, Console& console) {
  Outcome outcome = Outcome::nothing;
  Columns columns(console);
  fleet.ask(problemsQuestion(), [&](FleetRow row) {
    const FleetTrouble trouble = fleetTrouble(row);
    options.fleet.json ? console.bytes(asJsonLine(kProblemMembers, trouble)) : addRow(trouble, columns);
    outcome = Outcome::something;
    return true;
  });
  return outcome;
}

Outcome hosts(const HostsOptions& options, Console& console) {
  FleetAsk fleet(options.fleet, console);
  return options.problems ? listProblems(options, fleet, console) : listHosts(options, fleet, console);
}

void declare(CommandLine& line, HostsOptions& options) {
  declareFleet(line, options.fleet);
  const Option silent =
      line.option("--silent-for", options.silentFor,
                  "Only hosts whose newest document is older than that; parts of a day as 0.5")
          .type("DAYS")
          .notNegative();
  line.flag("--problems", options.problems, "List the documents whose facts were not taken, and why")
      .excludes(silent);
}

}  // namespace

Command fleetHostsCommand() {
  List problems = membersList(kProblemMembers);
  problems.title = "Members of --problems --json";
  return {
      .name = "fleet hosts",
      .sentence = "List the hosts of a fleet, with what their newest documents say",
      .text =
          "One line for each host: the time of its newest document (UTC), its state, the engine, the "
          "database, how many documents there are, and how many members answered. A document from the "
          "future, or one that names another host than the one that sent it, stands for a host only where "
          "there is no other.\n\n"
          "With --silent-for or --problems the status is 1 when there is anything to list.",
      .examples = {{"tarn fleet hosts --from fleet.db",
                    "db1  2026-11-20T01:30:25Z  whole      PostgreSQL 15.18  SALES  2 documents  17 of 18 "
                    "answered\n"
                    "db2  2026-11-19T02:04:51Z  whole      PostgreSQL 15.18  SALES  1 document   17 of 18 "
                    "answered\n"
                    "db3  2026-11-20T01:55:40Z  not whole  PostgreSQL 15.18  SALES  1 document   14 of 15 "
                    "answered"},
                   {"tarn fleet hosts --from fleet.db --problems --json | jq -r '.problem + \", \" + .host'",
                    "not whole, db3"}},
      .lists = {membersList(kHostMembers), std::move(problems)},
      .bind = bindTo<HostsOptions>(declare, hosts)};
}

}  // namespace tarn
