#include <unordered_map>

#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/compare/tarn_compare_print.h"

namespace tarn {

namespace {

struct HistoryOptions {
  FleetOptions fleet;
  std::string host, pointer;
};

using Text = std::optional<std::string>;

struct HistoryChange {
  std::string host, place;
  Moment moment = 0;
  Text before, after;
};

constexpr Member<HistoryChange> kMembers[] = {
    {"host", "Name of the host.",
     [](const HistoryChange& change, JsonText& json) { json.element(change.host); }},
    {"time", "Of the document that shows the change, in UTC.",
     [](const HistoryChange& change, JsonText& json) { json.element(timeText(change.moment)); }},
    {"place", "The place of the fact.",
     [](const HistoryChange& change, JsonText& json) { json.element(change.place); }},
    {"change", "\"added\", \"removed\" or \"changed\".",
     [](const HistoryChange& change, JsonText& json) {
       json.element(!change.before ? "added" : !change.after ? "removed" : "changed");
     }},
    {"old", "The value before; null where there was none.",
     [](const HistoryChange& change, JsonText& json) { json.element(change.before); }},
    {"new", "The value since then; null where there is none.",
     [](const HistoryChange& change, JsonText& json) { json.element(change.after); }}};

/// Turns values since a moment into changes.
class Changes {
 public:
  explicit Changes(std::string host) : m_host(std::move(host)) {}

  HistoryChange next(FleetRow row) {
    Text after = row[3] == "1" ? Text(row[2]) : Text();
    Text& known = m_values[std::string(row[1])];
    HistoryChange change = {m_host, std::string(row[1]), momentOf(row[0]), std::move(known), after};
    known = std::move(after);
    return change;
  }

 private:
  std::string m_host;
  std::unordered_map<std::string, Text> m_values;
};

/// For people: each document's time, and below it what changed. Of the first document, which is all new, only
/// how much it shows, unless a place was asked for.
class HistoryText {
 public:
  HistoryText(bool isWhole, Console& console) : m_isWhole(isWhole), m_console(console) {}

  void add(const HistoryChange& change) {
    m_first = m_first.value_or(change.moment);
    if (m_isWhole && change.moment == *m_first) {
      ++m_firstFacts;
      return;
    }
    finishFirst();
    if (change.moment != m_moment) {
      m_moment = change.moment;
      m_console.line(orDash(timeText(m_moment)));
    }
    for (const Shown& line : printed(shown(change.place), change.before, change.after)) {
      m_console.line("  " + line);
    }
  }

  void finish() { finishFirst(); }

 private:
  void finishFirst() {
    if (m_firstFacts > 0) {
      m_console.line(orDash(timeText(*m_first)));
      m_console.line("  the first document, " + counted(m_firstFacts, "fact"));
      m_firstFacts = 0;
    }
  }

  bool m_isWhole;
  Console& m_console;
  std::optional<Moment> m_first;
  Moment m_moment = 0;
  std::uint64_t m_firstFacts = 0;
};

Outcome history(const HistoryOptions& options, Console& console) {
  FleetAsk fleet(options.fleet, console);
  Changes changes(options.host);
  HistoryText text(options.pointer.empty(), console);
  bool isKnown = false;
  const bool answered = fleet.ask(historyQuestion(options.host, options.pointer), [&](FleetRow row) {
    const HistoryChange change = changes.next(row);
    options.fleet.json ? console.bytes(asJsonLine(kMembers, change)) : text.add(change);
    isKnown = true;
    return true;
  });
  text.finish();
  if (answered && !isKnown && options.pointer.empty()) {
    console.trouble(say("no facts of a host \"{}\" are known", shown(options.host)));
  }
  return Outcome::nothing;
}

void declare(CommandLine& line, HistoryOptions& options) {
  line.argument("HOST", options.host, "The host's name, as fleet hosts shows it").required();
  line.argument("POINTER", options.pointer, "Only what lies there or below, as in fleet where");
  declareFleet(line, options.fleet);
}

}  // namespace

Command fleetHistoryCommand() {
  return {
      .name = "fleet history",
      .sentence = "Tell what changed on a host, and when",
      .text =
          "Lists the changes of a host's facts, as tarn diff does, below the times of the documents that "
          "show "
          "them (UTC). What changes by itself is left out. Of the host's first document only the number of "
          "facts is told, unless POINTER is given.",
      .examples = {{"tarn fleet history db1 --from fleet.db",
                    "2026-11-19T01:30:22Z\n"
                    "  the first document, 18 facts\n"
                    "2026-11-20T01:30:25Z\n"
                    "  /databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES: 16384 → 32768\n"
                    "  /databaseInfo[name=SALES]/configRaw:\n"
                    "    @@ -2 +2 @@\n"
                    "    -shared_buffers = 128MB\n"
                    "    +shared_buffers = 256MB\n"
                    "  /instanceInfo/codeRelease: PostgreSQL 15.17 → PostgreSQL 15.18\n"
                    "  /instanceInfo/version: 15.17 → 15.18"}},
      .lists = {membersList(kMembers)},
      .bind = bindTo<HistoryOptions>(declare, history)};
}

}  // namespace tarn
