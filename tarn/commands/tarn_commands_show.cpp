
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/fleet/tarn_fleet_time.h"
#include "tarn/show/tarn_show_brief.h"
#include "tarn/show/tarn_show_document.h"
#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

constexpr std::size_t kIndent = 2;

struct ShowOptions {
  std::string file = "-", pointer;
  std::vector<std::string> facts;
  bool all = false;
};

Look lookOf(const ShowOptions& options, const Console& console) {
  const char* const plain = getenv("NO_COLOR");
  return {.width = console.width(),
          .all = options.all || !options.pointer.empty(),
          .styled = console.outputIsTerminal() && (plain == nullptr || *plain == '\0')};
}

/// "Host db1, SQLite 3.40.1, database SAMPLE, 2026-11-21"
Shown nameOf(const Roles& roles, bool isWhole) {
  struct Part {
    Role role;
    Shown before;
  };
  const Part parts[] = {
      {Role::host, "Host "}, {Role::engine, ""}, {Role::database, "database "}, {Role::time, ""}};
  Shown name;
  for (const Part& part : parts) {
    if (const std::optional<std::string>& text = roles[part.role]) {
      name += name.text().empty() ? part.before : ", " + part.before;
      name += shown(*text);
    } else if (part.role == Role::database && isWhole && !name.text().empty()) {
      name += ", no database";
    }
  }
  return name;
}

/// "3 days ago". Of a document that tells no more than its day, that is counted in days of UTC.
std::optional<Shown> ageOf(const Roles& roles) {
  const std::optional<std::string>& text = roles[Role::time];
  const std::optional<DocumentTime> made = text ? timeOf(*text) : std::nullopt;
  if (!made) {
    return std::nullopt;
  }
  const std::int64_t days = time(nullptr) / kSecondsPerDay - made->seconds / kSecondsPerDay;
  if (days < -1) {
    return say("in {} days: a clock is wrong", -days);
  }
  return days <= 0 ? "today" : days == 1 ? "yesterday" : say("{} days ago", days);
}

/// "4 of 82, besides 11 that need not"
Shown silenceOf(const StatusSink& status, const Facts& facts) {
  std::uint64_t optional = 0;
  status.silent().forEach([&](Silence, std::string_view pointer) {
    const Fact* const fact = facts.find(pointer);
    optional += fact != nullptr && fact->isOptional ? 1 : 0;
  });
  const std::uint64_t wanted = status.asked() - status.answered() - optional;
  if (wanted == 0) {
    return optional == 0 ? "" : say("only {} that need not", optional);
  }
  const Shown count = say("{} of {}", wanted, status.asked());
  return optional == 0 ? count : count + say(", besides {} that need not", optional);
}

/// What is worth knowing before all the rest.
void brief(const Tree& tree, const Facts& facts, const StatusSink& status, Lines& lines) {
  std::vector<Labelled> all = briefOf(tree, facts);
  if (const std::optional<Shown> age = ageOf(status.roles())) {
    all.insert(all.begin(), {"Collected", *age});
  }
  if (const Shown silence = silenceOf(status, facts); !silence.text().empty()) {
    all.push_back({"No answer", silence});
  }
  lines.gap();
  lines.labelled(kIndent, all);
}

/// "sample.json: whole, 71 of 82 members answered, 8.3 KiB (8499)"
void head(const ShowOptions& options, const Tree& tree, const StatusSink& status, std::uint64_t bytes,
          Lines& lines) {
  const Shown name = nameOf(status.roles(), tree.ending().state == State::whole);
  if (!name.text().empty()) {
    lines.heading(0, name, {});
  }
  const bool isForeign = tree.ending().state == State::whole && !status.isDocument();
  const Shown counted =
      isForeign ? say("no document of a collector, {}", sizeOf(bytes))
                : say("{} of {} members answered, {}", status.answered(), status.asked(), sizeOf(bytes));
  if (tree.ending().state == State::whole) {
    lines.line(0, say("{}: {}", shown(options.file), counted));
  } else {
    lines.line(0, say("{}:{}:{}: {}", shown(options.file), tree.ending().place.line,
                      tree.ending().place.column, troubleOf(tree.ending())));
    lines.line(0, say("What stands before: {}", counted));
  }
}

Outcome document(const ShowOptions& options, const Tree& tree, const Facts& facts, const StatusSink& status,
                 std::uint64_t bytes, Console& console) {
  Lines lines([&console](const Shown& line) { console.line(line); }, lookOf(options, console));
  DocumentView view(tree, facts, lines);
  head(options, tree, status, bytes, lines);
  brief(tree, facts, status, lines);
  lines.gap();
  if (!tree.empty()) {
    view.sections();
  }
  view.silent(status);
  if (lines.hasCut()) {
    lines.gap();
    lines.words(0,
                "Not all is shown: with --all it is, or one member whole with its POINTER behind the file.");
  }
  return tree.ending().state == State::whole ? Outcome::nothing : Outcome::something;
}

Outcome member(const ShowOptions& options, const Tree& tree, const Facts& facts, Console& console) {
  const Node* const node = tree.empty() ? nullptr : tree.find(options.pointer);
  if (node == nullptr) {
    console.trouble(options.file, say("has no {}", shown(options.pointer)));
    return Outcome::nothing;
  }
  Lines lines([&console](const Shown& line) { console.line(line); }, lookOf(options, console));
  DocumentView(tree, facts, lines).member(*node, options.pointer);
  return Outcome::nothing;
}

Outcome show(const ShowOptions& options, Console& console) {
  const std::optional<Facts> facts = loadFacts(options.facts, console);
  std::optional<std::string> text = facts ? readText(console, options.file) : std::nullopt;
  if (!text) {
    return Outcome::nothing;
  }
  Path path(Path::Repeated::numbered);
  StatusSink status(*facts, path);
  Reader reader(status, path);
  reader.feed(*text);
  reader.finish();
  status.finish();
  const std::uint64_t bytes = text->size();
  const Tree tree(*std::move(text));
  return options.pointer.empty() ? document(options, tree, *facts, status, bytes, console)
                                 : member(options, tree, *facts, console);
}

void declare(CommandLine& line, ShowOptions& options) {
  line.argument("FILE", options.file, "Document; - or nothing for standard input").type("");
  line.argument("POINTER", options.pointer, "One member, shown whole, as in /databaseInfo/0/bufferpools")
      .type("");
  line.flag("--all", options.all, "Cut nothing: whole lines, tables and listings");
  declareFacts(line, options.facts);
}

}  // namespace

Command showCommand() {
  return {
      .name = "show",
      .sentence = "Show a document to people",
      .text =
          "What it is, how old it is and what stands out, in a few lines. Then sections with the values "
          "that answered, sizes in binary units beside the bytes, tables, bars for shares and for what is "
          "counted, the beginnings of listings; at the end what did not answer, and why. Lines keep to the "
          "width of the terminal, or to COLUMNS; long texts, tables and listings are cut and say by how "
          "much. A terminal whose locale has no UTF-8 is shown ASCII.\n\n"
          "With a POINTER that member is shown whole. The status is 1 when the document is cut or damaged: "
          "what stands before the trouble is shown.",
      .examples = {{"tarn show postgresql.json | grep -A 4 'Buffer pools'",
                    "  Buffer pools  /databaseInfo/0/bufferpools\n"
                    "    Pool            Number  Pages     Page size\n"
                    "    shared_buffers       1  16384  8 KiB (8192)\n"
                    "    temp_buffers         2   1024  8 KiB (8192)\n"
                    "    wal_buffers          3    512  8 KiB (8192)"},
                   {"tarn show sample.json /platformInfo/physMemFree",
                    "Memory free  /platformInfo/physMemFree\n"
                    "RAM that nothing uses, not even as a cache.\n\n"
                    "21.1 GiB (22685339648)  ██████████████████░░  90 %"}},
      .bind = bindTo<ShowOptions>(declare, show)};
}

}  // namespace tarn
