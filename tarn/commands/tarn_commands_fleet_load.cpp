#include <signal.h>

#include <array>
#include <atomic>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/fleet/load/tarn_fleet_load.h"

namespace tarn {

namespace {

struct LoadOptions {
  std::string database;
  std::vector<std::string> stores, logs, facts;
};

std::atomic<bool> isStopped = false;

/// Lets SIGINT and SIGTERM end the load behind a batch.
class StopSignals {
 public:
  StopSignals() {
    isStopped = false;
    struct sigaction action = {};
    action.sa_handler = [](int) { isStopped = true; };
    for (std::size_t at = 0; at < kSignals.size(); ++at) {
      sigaction(kSignals.at(at), &action, &m_before.at(at));
    }
  }
  ~StopSignals() {
    for (std::size_t at = 0; at < kSignals.size(); ++at) {
      sigaction(kSignals.at(at), &m_before.at(at), nullptr);
    }
  }
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

 private:
  static constexpr std::array<int, 2> kSignals = {SIGINT, SIGTERM};
  std::array<struct sigaction, 2> m_before = {};
};

std::optional<ExchangeLog> readLogs(const std::vector<std::string>& files, Console& console) {
  ExchangeLog log;
  for (const std::string& file : files) {
    if (const std::optional<std::string> problem = log.add(file)) {
      console.trouble(file, shown(*problem));
      return std::nullopt;
    }
  }
  return log;
}

LoadWatch watchOn(Console& console) {
  return {
      .progress =
          [&console](const LoadCounts& counts) {
            console.progress(say("{} documents loaded, {} MB", counts.documents, counts.bytes / 1'000'000));
          },
      .trouble =
          [&console](const StoreTrouble& trouble) { console.trouble(trouble.path, shown(trouble.text)); },
      .waiting = [&console] { console.progress("waiting for another loader"); },
      .stopped = [] { return isStopped.load(); }};
}

Shown summaryOf(const LoadCounts& counts) {
  return say("{} new documents, {} of them with a problem; {} known from other files, {} files seen before",
             counts.documents, counts.problems, counts.known, counts.unchanged);
}

Outcome load(const LoadOptions& options, Console& console) {
  const std::optional<Facts> facts = loadFacts(options.facts, console);
  const std::optional<ExchangeLog> log = facts ? readLogs(options.logs, console) : std::nullopt;
  if (!log) {
    return Outcome::nothing;
  }
  const StopSignals signals;
  OpenedDatabase opened = openFleet(options.database, false);
  FleetProblem problem = opened.problem ? opened.problem : opened.database->create();
  LoadCounts counts;
  if (!problem) {
    problem = loadStores(options.stores, *facts, *log, watchOn(console), *opened.database, &counts);
    console.line(summaryOf(counts));
  }
  if (isStopped) {
    console.trouble("interrupted; what is not loaded yet will be by the next load");
  } else if (problem) {
    console.trouble(options.database, shown(*problem));
  }
  return Outcome::nothing;
}

void declare(CommandLine& line, LoadOptions& options) {
  line.option("--into,--db", options.database, "The database; a file of SQLite's is made where there is none")
      .required()
      .environment("TARN_FLEET")
      .type("DB");
  line.option("--log", options.logs,
              "An access log of the collection server, which tells whose documents are; may be compressed "
              "(gzip, zstd), and given again")
      .type("FILE");
  declareFacts(line, options.facts);
  line.argument("STORE", options.stores, "Folders of documents, or single ones").required().type("");
}

constexpr const char* kText =
    "Takes what is new in the stores: files NAME.json, and NAME.json.zst, which are compressed by zstd, in "
    "any depth. "
    "Names that begin with a dot and folders called \"incoming\" are left out. The store is only read.\n\n"
    "Documents may come in any order, and as often as you like: one counts once, by the hash of its bytes, "
    "and one "
    "that comes late changes the history, not the present. A load that was ended in whatever way is made "
    "whole by "
    "the next one. Several may be at work at once.\n\n"
    "The host is the one that the document tells, else the one of the server's log. The time is the "
    "document's; where "
    "that is a date alone, the name of the file tells the time of day, as the collection server gave it "
    "(2026-11-21/102030-ID.json). A document that tells neither has them from the file's name and the "
    "log.\n\n"
    "A document that is not whole, has no host or no time, is from the future (more than a day), is larger "
    "than 64 MB or has more than a million values, or which the log knows from another host, is recorded "
    "with its file, and its facts are not taken; see fleet hosts --problems.";

}  // namespace

Command fleetCommand() {
  return {.name = "fleet",
          .sentence = "Keep the facts of many hosts' documents, and answer questions about them",
          .text =
              "DB is a file, which SQLite keeps, or clickhouse://HOST[:PORT]/DATABASE. TARN_FLEET in the "
              "environment names it where no option does.\n\nA fact is a value at a place of a host's "
              "documents. It is kept from the document on that shows it first, until another one shows "
              "something else there; what changes by itself (see facts.md) is kept as the newest document "
              "shows it. Rows of tables go by their names, as in tarn diff: "
              "/databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES.\n\nThe questions send one "
              "statement each; --sql prints it for those who have tools of their own. Times are in UTC.",
          .examples = {},
          .bind = {}};
}

Command fleetLoadCommand() {
  return {.name = "fleet load",
          .sentence = "Load the new documents of a store",
          .text = kText,
          .examples =
              {{"tarn fleet load --into fleet.db store",
                "4 new documents, 1 of them with a problem; 0 known from other files, 0 files seen before"}},
          .bind = bindTo<LoadOptions>(declare, load)};
}

}  // namespace tarn
