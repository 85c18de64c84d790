#include <cstdlib>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/compare/tarn_compare_print.h"

namespace tarn {

namespace {

struct DiffOptions {
  std::string before, after;
  std::vector<std::string> facts;
  bool all = false, json = false;
};

struct Record {
  const Comparison& comparison;
  const Change& change;
  Route route;
};

constexpr Member<Record> kMembers[] = {
    {"pointer", "JSON Pointer of the value in NEW; in OLD of what was removed.",
     [](const Record& record, JsonText& json) { json.element(std::string_view(pointerOf(record.route))); }},
    {"row", "The columns that name the row, with their values; null outside of rows that have names.",
     [](const Record& record, JsonText& json) { appendRow(record.route, json); }},
    {"change", "\"added\", \"removed\" or \"changed\".",
     [](const Record& record, JsonText& json) { json.element(wordOf(record.change)); }},
    {"old", "The value in OLD; null where there is none.",
     [](const Record& record, JsonText& json) {
       appendValue(record.comparison.before(), record.change.before, json);
     }},
    {"new", "The value in NEW; null where there is none.", [](const Record& record, JsonText& json) {
       appendValue(record.comparison.after(), record.change.after, json);
     }}};

/// What went in red and what came in green, as others do.
Shown painted(const Shown& line) {
  const std::size_t sign = line.text().find_first_not_of(' ');
  const char first = sign == std::string::npos ? ' ' : line.text()[sign];
  if (first != '-' && first != '+') {
    return line;
  }
  return (first == '-' ? Shown("\x1b[31m") : Shown("\x1b[32m")) + line + "\x1b[m";
}

void print(const Comparison& comparison, const Change& change, bool inColour, Console& console) {
  for (const Shown& line : printed(comparison, change)) {
    console.line(inColour ? painted(line) : line);
  }
}

/// What is not whole is compared as far as it goes, and told.
bool tellState(const std::string& file, const Tree& tree, Console& console) {
  if (tree.ending().state != State::whole) {
    console.problem(file, tree.ending().place, troubleOf(tree.ending()));
  }
  return tree.ending().state == State::whole;
}

Outcome diff(const DiffOptions& options, Console& console) {
  if (options.before == "-" && options.after == "-") {
    console.trouble("only one document can be standard input");
    return Outcome::nothing;
  }
  const std::optional<Facts> facts = loadFacts(options.facts, console);
  if (!facts) {
    return Outcome::nothing;
  }
  const std::optional<Tree> before = readTree(console, options.before);
  const std::optional<Tree> after = readTree(console, options.after);
  if (!before || !after) {
    return Outcome::nothing;
  }
  const bool beforeIsWhole = tellState(options.before, *before, console);
  const bool afterIsWhole = tellState(options.after, *after, console);
  if (before->empty() || after->empty()) {
    return Outcome::something;
  }
  const bool inColour = console.outputIsTerminal() && getenv("NO_COLOR") == nullptr;
  const Comparison comparison(*before, *after, *facts, {options.all});
  for (const Change& change : comparison.changes()) {
    if (options.json) {
      console.bytes(asJsonLine(kMembers, Record{comparison, change, comparison.route(change)}));
    } else {
      print(comparison, change, inColour, console);
    }
  }
  return beforeIsWhole && afterIsWhole && comparison.changes().empty() ? Outcome::nothing
                                                                       : Outcome::something;
}

void declareOptions(CommandLine& line, DiffOptions& options) {
  line.argument("OLD", options.before, "The document before; - is standard input").required();
  line.argument("NEW", options.after, "The document after").required();
  line.flag("--all", options.all, "Also facts that change by themselves, and what moved among its like");
  line.flag("--json", options.json, "Print an object for each change");
  declareFacts(line, options.facts);
}

constexpr const char* kText =
    "Prints one change a line: the way to a value, then the old value, an arrow and the new one; behind + "
    "what "
    "came, behind - what went. A listing takes several lines, as in a unified diff without context.\n\n"
    "Members are matched by name, and rows by the columns that name them, never by position. The table of "
    "facts "
    "tells those columns; else it is the smallest set whose values are unique in both documents, and rows "
    "that "
    "have none are matched as a whole. Facts that change by themselves, and the order of rows, are no "
    "difference unless --all asks for them: then a row that moved went at one place and came at another.\n\n"
    "A document that is cut or damaged is compared as far as it goes, which is told on standard error.\n\n"
    "The status is 0 when nothing changed, 1 when something did or a document is not whole, and 2 on "
    "trouble. "
    "Lines are coloured on a terminal, unless NO_COLOR is set.";

const std::vector<Example> kExamples = {
    {"tarn diff sample.json later.json",
     R"(/databaseInfo/0/configRaw:
  @@ -6 +6 @@
  - cache_size                   = -2000
  + cache_size                   = -8000
/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES: 500 → 800
- /databaseInfo/0/columnTypeDistrobution[TYPENAME=DOUBLE]: {"TARN_OBJECTIFY": "typename", "COUNT": "1", "TYPENAME": "DOUBLE"}
+ /databaseInfo/0/columnTypeDistrobution[TYPENAME=BIT]: {"TARN_OBJECTIFY": "typename", "COUNT": "2", "TYPENAME": "BIT"}
/databaseInfo/0/numberOfTables: 9 → 10
/platformInfo/osRelease: 6.1.0-40-amd64 → 6.1.0-41-amd64)"},
    {"tarn diff --json sample.json later.json | head -n 2 | tail -n 1",
     R"({"pointer": "/databaseInfo/0/bufferpools/0/NPAGES", "row": {"BPNAME": "main"}, "change": "changed", "old": "500", "new": "800"})"},
};

}  // namespace

Command diffCommand() {
  return {.name = "diff",
          .sentence = "Tell what changed from one document to another",
          .text = kText,
          .examples = kExamples,
          .lists = {membersList(kMembers)},
          .bind = bindTo<DiffOptions>(declareOptions, diff)};
}

}  // namespace tarn
