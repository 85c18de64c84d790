
#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"

namespace tarn {

namespace {

struct DriftOptions {
  FleetOptions fleet;
  std::string since;
};

constexpr Member<FleetDrift> kMembers[] = {
    {"pointer", "The place, with * for any element.",
     [](const FleetDrift& drift, JsonText& json) { json.element(drift.pointer); }},
    {"hosts", "On how many hosts a fact changed there.",
     [](const FleetDrift& drift, JsonText& json) { json.element(drift.hosts); }},
    {"changes", "How many changes there were in all.",
     [](const FleetDrift& drift, JsonText& json) { json.element(drift.changes); }}};

Outcome drift(const DriftOptions& options, Console& console) {
  const std::optional<Moment> since = beginningOf(options.since, console);
  if (!since) {
    return Outcome::nothing;
  }
  FleetAsk fleet(options.fleet, console);
  Outcome outcome = Outcome::nothing;
  Columns columns(console, Columns::Wide::isCut);
  fleet.ask(driftQuestion(std::to_string(*since)), [&](FleetRow row) {
    const FleetDrift drift = fleetDrift(row);
    if (options.fleet.json) {
      console.bytes(asJsonLine(kMembers, drift));
    } else {
      columns.row({counted(drift.hosts, "host"), counted(drift.changes, "change"), shown(drift.pointer)});
    }
    outcome = Outcome::something;
    return true;
  });
  return outcome;
}

void declare(CommandLine& line, DriftOptions& options) {
  line.option("--since", options.since, "From this day or time on, in UTC unless it tells its offset")
      .type("DATE")
      .required();
  declareFleet(line, options.fleet);
}

}  // namespace

Command fleetDriftCommand() {
  return {
      .name = "fleet drift",
      .sentence = "Tell what changed in a fleet, and on how many hosts",
      .text =
          "One line for each place where facts changed, came or went, the one on most hosts first. What a "
          "host's first document shows is no change, and what changes by itself is left out. The status is "
          "1 when anything changed.\n\n"
          "DATE is a day, 2026-11-21, or a time, 2026-11-21T10:20:30Z.",
      .examples = {{"tarn fleet drift --since 2026-11-20 --from fleet.db",
                    "1 host  1 change  /databaseInfo/*/bufferpools/*/NPAGES\n"
                    "1 host  1 change  /databaseInfo/*/configRaw\n"
                    "1 host  1 change  /instanceInfo/codeRelease\n"
                    "1 host  1 change  /instanceInfo/version"}},
      .lists = {membersList(kMembers)},
      .bind = bindTo<DriftOptions>(declare, drift)};
}

}  // namespace tarn
