
#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_outputs.h"
#include "tarn/page/tarn_page_fleet.h"

namespace tarn {

namespace {

constexpr double kWeek = 7;  // days

struct FleetPageOptions {
  FleetOptions fleet;
  std::string out;
};

FleetPage::Host hostOnPage(const FleetHost& host, Moment before) {
  const Shown engine = engineCell(host.engine, host.version);
  return {.name = host.name,
          .time = timeText(host.moment).value_or(""),
          .state = host.state,
          .problem = host.problem.value_or(""),
          .engine = host.engine || host.version ? engine.text() : "",
          .database = host.database.value_or(""),
          .answered = host.answered,
          .asked = host.asked,
          .documents = host.documents,
          .isSilent = host.moment < before};
}

/// `2026-11-21 03:44 UTC`
std::string dayAndTime(Moment moment) {
  const std::string text = timeText(moment).value_or("");
  return text.substr(0, text.find('T')) + " " + text.substr(text.find('T') + 1, 5) + " UTC";
}

/// False when a question was not answered; the console was told.
bool ask(FleetAsk& fleet, Moment before, FleetPage& page) {
  return fleet.ask(hostsQuestion(), [&](FleetRow row) {
    page.hosts.push_back(hostOnPage(fleetHost(row), before));
    return true;
  }) && fleet.ask(driftQuestion(std::to_string(before)), [&](FleetRow row) {
    const FleetDrift drift = fleetDrift(row);
    page.drift.push_back({drift.pointer, drift.hosts, drift.changes});
    return true;
  }) && fleet.ask(problemsQuestion(), [&](FleetRow row) {
    const FleetTrouble trouble = fleetTrouble(row);
    page.problems.push_back({trouble.file, trouble.host.value_or(""), timeText(trouble.moment).value_or(""),
                             trouble.state, trouble.problem});
    return true;
  });
}

Outcome fleetPage(const FleetPageOptions& options, Console& console) {
  const Moment before = momentBefore(kWeek);
  FleetPage page;
  page.made = dayAndTime(momentBefore(0));
  page.since = dayAndTime(before);
  page.silentAfter = kWeek;
  FleetAsk fleet(options.fleet, console);
  if (!ask(fleet, before, page)) {
    return Outcome::nothing;
  }
  const std::optional<std::string> text = pageOf(page);
  if (!text) {
    console.trouble("out of memory");
  } else {
    writeOutput(options.out, *text, console);
  }
  return Outcome::nothing;
}

void declare(CommandLine& line, FleetPageOptions& options) {
  declareFleetDatabase(line, options.fleet);
  line.option("-o", options.out, "Write the page to this file; - is standard output")
      .required()
      .type("PAGE.html");
}

constexpr const char* kText =
    "Writes one page for a browser, as tarn page does for a document: the hosts with their states and "
    "engines, "
    "which are silent for a week, what changed in that week and on how many hosts, and the documents whose "
    "facts "
    "were not taken. The page asks nobody for anything. The file can only be read by its owner.";

}  // namespace

Command fleetPageCommand() {
  return {.name = "fleet page",
          .sentence = "Write a fleet as one page for a browser",
          .text = kText,
          .examples = {{"tarn fleet page --from fleet.db -o fleet.html && ls fleet.html", "fleet.html"}},
          .bind = bindTo<FleetPageOptions>(declare, fleetPage)};
}

}  // namespace tarn
