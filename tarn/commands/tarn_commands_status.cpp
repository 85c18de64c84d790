#include <algorithm>

#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_files.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/facts/tarn_facts_status.h"

namespace tarn {

namespace {

struct StatusOptions {
  std::vector<std::string> files, facts;
  bool json = false, verbose = false;
};

/// A document that was read.
struct DocumentStatus {
  std::string file;
  Ending ending;
  std::uint64_t bytes = 0;
  bool hasMark = false;  ///< begins with a byte order mark
  StatusSink found;

  DocumentStatus(const Facts& facts, std::string name, const Path& path)
      : file(std::move(name)), found(facts, path) {}

  bool isBroken() const { return ending.state == State::cut || ending.state == State::damaged; }
  bool isStrict() const { return !isBroken() && !hasMark && found.isStrict(); }
  const char* state() const {
    if (isBroken()) {
      return ending.state == State::cut ? "cut" : "damaged";
    }
    return found.isDocument() ? "whole" : "foreign";
  }
};

template <Role role>
void writeRole(const DocumentStatus& status, JsonText& json) {
  json.element(status.found.roles()[role]);
}

void writePointers(const SilentMembers& members, JsonText& json) {
  json.array();
  members.forEach([&json](Silence, std::string_view pointer) { json.element(pointer); });
  json.end();
}

constexpr Member<DocumentStatus> kMembers[] = {
    {"file", "Name of the file as it was given.",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.file); }},
    {"state",
     "\"whole\", \"cut\" (ends too early), \"damaged\" (breaks the grammar) or \"foreign\" (no document of a "
     "collector).",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.state()); }},
    {"line", "Line of the trouble, or null.",
     [](const DocumentStatus& status, JsonText& json) {
       status.isBroken() ? json.element(status.ending.place.line) : json.null();
     }},
    {"column", "Column of the trouble, or null.",
     [](const DocumentStatus& status, JsonText& json) {
       status.isBroken() ? json.element(status.ending.place.column) : json.null();
     }},
    {"host", "Name of the host, or null.", writeRole<Role::host>},
    {"time", "When the document was made, as it says, or null.", writeRole<Role::time>},
    {"engine", "The database engine, or null.", writeRole<Role::engine>},
    {"version", "Its version, or null.", writeRole<Role::version>},
    {"database", "Name of the database, null without one.", writeRole<Role::database>},
    {"answered", "Number of members that answered.",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.found.answered()); }},
    {"asked", "Number of members that were asked.",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.found.asked()); }},
    {"silent", "Array of pointers: the members that did not answer, in the document's order.",
     [](const DocumentStatus& status, JsonText& json) { writePointers(status.found.silent(), json); }},
    {"strict", "Whether the document is strict JSON as it is, but for what ends it.",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.isStrict()); }},
    {"repeated", "Array of pointers: the members whose name another one before them has.",
     [](const DocumentStatus& status, JsonText& json) { writePointers(status.found.repeated(), json); }},
    {"bytes", "Size of the document.",
     [](const DocumentStatus& status, JsonText& json) { json.element(status.bytes); }},
};

/// Reads on where the document was given up, to know its size.
std::uint64_t sizeOf(Source& source) {
  while (source.size() == 0 && !source.next().empty()) {
  }
  return std::max(source.size(), source.position());
}

bool beginsWithMark(Source& source) {
  const bool hasMark = source.next().starts_with("\xEF\xBB\xBF");
  source.rewind();
  return hasMark;
}

PassEnd read(Console& console, Source& source, Path& path, DocumentStatus& status) {
  Reader reader(status.found, path);
  const PassEnd end = readNumbered(console, status.file, source, reader, path);
  status.ending = reader.finish();
  status.found.finish();
  if (status.found.silent().lost() || status.found.repeated().lost()) {
    console.trouble(status.file, "the members that did not answer could not be kept in a temporary file");
  }
  return end;
}

Shown placeOf(const DocumentStatus& status) {
  if (!status.isBroken()) {
    return shown(status.file);
  }
  return say("{}:{}:{}: {}", shown(status.file), status.ending.place.line, status.ending.place.column,
             troubleOf(status.ending));
}

/// Of a document that is not all there nobody knows.
Shown databaseOf(const DocumentStatus& status) {
  const std::optional<std::string>& database = status.found.roles()[Role::database];
  return database || status.isBroken() ? orDash(database) : "no database";
}

Shown formOf(const DocumentStatus& status) {
  const Shown repeats = status.found.repeated().end() == 0 ? Shown() : Shown(", names repeat");
  return (status.isStrict() ? Shown("strict") : Shown("not strict")) + repeats;
}

void addRow(const DocumentStatus& status, Columns& columns) {
  const Roles& roles = status.found.roles();
  columns.row({shown(status.state()),
               say("{:3} of {:3} answered", status.found.answered(), status.found.asked()),
               databaseOf(status), orDash(roles[Role::host]), orDash(roles[Role::time]),
               engineCell(roles[Role::engine], roles[Role::version]), formOf(status), placeOf(status)});
}

const char* textOf(Silence silence) {
  constexpr const char* kTexts[] = {"\"null\"", "\"\"", "[]", "{}"};
  return kTexts[static_cast<std::size_t>(silence)];
}

void addSilent(const DocumentStatus& status, const Facts& facts, Columns& columns) {
  status.found.silent().forEach([&](Silence silence, std::string_view pointer) {
    const std::string reason = reasonOf(facts.find(pointer), silence);
    columns.line(say("  {:<6}  {}{}{}", shown(textOf(silence)), shown(pointer),
                     reason.empty() ? Shown() : Shown(": "), shown(reason)));
  });
}

void tell(const StatusOptions& options, const DocumentStatus& status, const Facts& facts, Console& console,
          Columns& columns) {
  if (options.json) {
    writeJsonLine(kMembers, status, [&console](std::string_view part) { console.bytes(part); });
    return;
  }
  addRow(status, columns);
  if (options.verbose) {
    addSilent(status, facts, columns);
  }
}

/// Nothing found when the document is whole, or could not be read, which the console was told.
Outcome statusOne(const StatusOptions& options, const std::string& file, const Facts& facts, Console& console,
                  Columns& columns) {
  Source source;
  if (!openSource(console, file, Source::Passes::several, source)) {
    return Outcome::nothing;
  }
  const bool hasMark = beginsWithMark(source);
  Outcome outcome = Outcome::nothing;
  numberedPass(console, file, source, [&](Path& path) {
    DocumentStatus status(facts, file, path);
    const PassEnd end = read(console, source, path, status);
    if (end == PassEnd::done) {
      status.hasMark = hasMark;
      status.bytes = sizeOf(source);
      tell(options, status, facts, console, columns);
      outcome = status.isBroken() || !status.found.isDocument() ? Outcome::something : Outcome::nothing;
    }
    return end;
  });
  return outcome;
}

Outcome status(const StatusOptions& options, Console& console) {
  const std::optional<Facts> facts = loadFacts(options.facts, console);
  if (!facts) {
    return Outcome::nothing;
  }
  const std::vector<std::string> files = documentsOf(options.files, console);
  Columns columns(console);
  Outcome outcome = Outcome::nothing;
  for (std::size_t i = 0; i < files.size(); ++i) {
    console.progress(say("{} of {} documents", i, files.size()));
    outcome = std::max(outcome, statusOne(options, files[i], *facts, console, columns));
  }
  return outcome;
}

void declare(CommandLine& line, StatusOptions& options) {
  options.files = {"-"};
  line.argument("FILE", options.files, "Documents, or folders of them; - or nothing for standard input")
      .type("");
  line.flag("-v,--verbose", options.verbose,
            "List the members that did not answer, and why if that is known");
  line.flag("--json", options.json, "One JSON object for each document");
  declareFacts(line, options.facts);
}

}  // namespace

Command statusCommand() {
  return {
      .name = "status",
      .sentence = "Say what documents are, and what did not answer in them",
      .text =
          "One line for each document: its state, how many of the members that were asked answered, the "
          "database, the host, the time, the engine, and the file. Of a document that is cut or damaged, "
          "what "
          "stands before the trouble is told, and the place of the trouble.\n\n"
          "A member is asked when its value is a text or an array. It did not answer when it is \"null\", an "
          "empty text, an empty array or an empty object. Objects are looked into, and so are arrays of "
          "objects that hold more than texts.\n\n"
          "Documents may be of any size. Where one has more than half a million names in objects that are "
          "open at once, it is read again, and all names are sorted in a file without a name in TMPDIR or "
          "/tmp; so standard input is kept in one, too. tarn strict tells more of that.",
      .examples =
          {{"tarn status sample.json alone.json",
            "whole   71 of  82 answered  SAMPLE       db1  2026-11-21  SQLite 3.40.1  strict, names repeat  "
            "sample.json\n"
            "whole   31 of  47 answered  no database  db1  -           -              strict                "
            "alone.json"},
           {"tarn status -v alone.json | grep databaseInfo",
            "  []      /databaseInfo: No connection: no database was asked for, or connecting failed."},
           {"tarn status --json *.json | jq -r 'select(.state != \"whole\").file'",
            "cut.json\ndamaged.json"}},
      .lists = {membersList(kMembers)},
      .bind = bindTo<StatusOptions>(declare, status)};
}

}  // namespace tarn
