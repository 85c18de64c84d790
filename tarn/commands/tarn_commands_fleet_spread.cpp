
#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"

namespace tarn {

namespace {

struct SpreadOptions {
  FleetOptions fleet;
  std::string pointer;
};

struct Spread {
  std::string_view value;
  std::uint64_t hosts, facts;
};

constexpr Member<Spread> kMembers[] = {
    {"value", "The value.", [](const Spread& spread, JsonText& json) { json.element(spread.value); }},
    {"hosts", "How many hosts show it.",
     [](const Spread& spread, JsonText& json) { json.element(spread.hosts); }},
    {"facts", "How many facts there are of it: more than hosts where the pointer stands for several places.",
     [](const Spread& spread, JsonText& json) { json.element(spread.facts); }}};

void addRow(const Spread& spread, Columns& columns) {
  columns.row({counted(spread.hosts, "host"),
               spread.facts == spread.hosts ? Shown() : counted(spread.facts, "fact"),
               spread.value.empty() ? Shown("\"\"") : shown(spread.value)});
}

Outcome spread(const SpreadOptions& options, Console& console) {
  FleetAsk fleet(options.fleet, console);
  Columns columns(console, Columns::Wide::isCut);
  fleet.ask(spreadQuestion(options.pointer), [&](FleetRow row) {
    const Spread spread = {row[0], countOf(row[1]), countOf(row[2])};
    options.fleet.json ? console.bytes(asJsonLine(kMembers, spread)) : addRow(spread, columns);
    return true;
  });
  return Outcome::nothing;
}

void declare(CommandLine& line, SpreadOptions& options) {
  line.argument("POINTER", options.pointer, "A place, as in fleet where").required();
  declareFleet(line, options.fleet);
}

}  // namespace

Command fleetSpreadCommand() {
  return {.name = "fleet spread",
          .sentence = "Tell which values a fleet shows at a place, and on how many hosts",
          .text = "One line for each value that holds now, the one on most hosts first.",
          .examples = {{"tarn fleet spread /platformInfo/osRelease --from fleet.db",
                        "1 host    6.1.0-25-amd64\n1 host    6.1.0-26-amd64"}},
          .lists = {membersList(kMembers)},
          .bind = bindTo<SpreadOptions>(declare, spread)};
}

}  // namespace tarn
