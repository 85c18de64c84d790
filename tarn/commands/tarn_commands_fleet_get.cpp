#include <unistd.h>

#include <limits>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/commands/tarn_commands_outputs.h"
#include "tarn/fleet/load/tarn_fleet_store.h"

namespace tarn {

namespace {

struct GetOptions {
  FleetOptions fleet;
  std::string host, at, out;
};

struct Archived {
  std::string host, file, hash;
  Moment moment = 0;
  std::uint64_t bytes = 0;
};

constexpr Member<Archived> kMembers[] = {
    {"host", "Name of the host.",
     [](const Archived& document, JsonText& json) { json.element(document.host); }},
    {"time", "Of the document, in UTC.",
     [](const Archived& document, JsonText& json) { json.element(timeText(document.moment)); }},
    {"file", "Its file, as it is now.",
     [](const Archived& document, JsonText& json) { json.element(document.file); }},
    {"hash", "SHA-256 of its bytes, as sha256sum prints it.",
     [](const Archived& document, JsonText& json) { json.element(document.hash); }},
    {"bytes", "Size of the document itself.",
     [](const Archived& document, JsonText& json) { json.element(document.bytes); }}};

/// The file as it was loaded, or compressed since. Nothing when it is not there any more.
std::optional<std::string> fileNow(const std::string& loaded) {
  for (const std::string& file : {loaded, loaded + ".zst"}) {
    if (access(file.c_str(), F_OK) == 0) {
      return file;
    }
  }
  return std::nullopt;
}

/// The newest document up to that moment; nothing when there is none, or it was told why.
std::optional<Archived> find(const GetOptions& options, Moment until, Console& console) {
  FleetAsk fleet(options.fleet, console);
  std::optional<Archived> found;
  const bool answered = fleet.ask(documentsQuestion(options.host, std::to_string(until)), [&](FleetRow row) {
    found = {options.host, std::string(row[1]), std::string(row[2]), momentOf(row[0]), countOf(row[3])};
    return false;
  });
  if (answered && !found) {
    console.trouble(say("no document of a host \"{}\" is known{}", shown(options.host),
                        shown(options.at.empty() ? "" : " up to then")));
  }
  return found;
}

void writeDocument(const Archived& document, const std::string& out, Console& console) {
  const StoreBytes content = readStoreFile({.path = document.file});
  if (content.problem || content.isLarge || content.isDamaged) {
    console.trouble(document.file, shown(content.problem.value_or("is not what was loaded")));
  } else {
    writeOutput(out, content.bytes, console);
  }
}

Outcome get(const GetOptions& options, Console& console) {
  const std::optional<Moment> until =
      options.at.empty() ? std::numeric_limits<Moment>::max() : endOf(options.at, console);
  std::optional<Archived> document = until ? find(options, *until, console) : std::nullopt;
  if (!document) {
    return Outcome::nothing;
  }
  const std::optional<std::string> file = fileNow(document->file);
  if (!file) {
    console.trouble(document->file, "is not there any more");
    return Outcome::nothing;
  }
  document->file = *file;
  if (!options.out.empty()) {
    writeDocument(*document, options.out, console);
  } else if (options.fleet.json) {
    console.bytes(asJsonLine(kMembers, *document));
  } else {
    console.line(shown(document->file));
  }
  return Outcome::nothing;
}

void declare(CommandLine& line, GetOptions& options) {
  line.argument("HOST", options.host, "The host's name, as fleet hosts shows it").required();
  line.option("--at", options.at, "The document that was the newest on that day, or at that time, in UTC")
      .type("DATE");
  line.option("-o", options.out, "Write the document itself to this file; - is standard output").type("FILE");
  declareFleet(line, options.fleet);
}

}  // namespace

Command fleetGetCommand() {
  return {
      .name = "fleet get",
      .sentence = "Find a host's document in the archive",
      .text =
          "Prints the file of the host's newest document, or of the one that was the newest on a day or at a "
          "time. The file is found, too, when it was compressed by zstd since and has .zst behind its name; "
          "-o writes the document as it came.",
      .examples = {{"tarn fleet get db1 --at 2026-11-19 --from fleet.db -o db1.json && tarn status db1.json",
                    "whole   17 of  18 answered  SALES  db1  2026-11-19T01:30:22Z  PostgreSQL 15.17  "
                    "strict  db1.json"}},
      .lists = {membersList(kMembers)},
      .bind = bindTo<GetOptions>(declare, get)};
}

}  // namespace tarn
