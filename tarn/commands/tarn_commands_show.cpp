
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/show/tarn_show_document.h"
#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

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

/// "Host db1, SQLite 3.39.3, database SAMPLE, 2026-11-21"
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

/// "sample.json: whole, 71 of 82 members answered, 8.3 KiB (8499)"
void head(const ShowOptions& options, const Tree& tree, const StatusSink& status, std::uint64_t bytes,
          Lines& lines) {
  const Shown name = nameOf(status.roles(), tree.ending().state == State::whole);
  lines.heading(0, name.text().empty() ? shown(options.file) : name, {});
  const Shown size = bytes < 1024 ? say("{} bytes", bytes) : valueOf(std::to_string(bytes), Unit::bytes);
  const Shown counted = say("{} of {} members answered, {}", status.answered(), status.asked(), size);
  if (tree.ending().state == State::whole) {
    lines.line(0, say("{}: {}", shown(options.file), counted));
  } else {
    lines.line(0, say("{}:{}:{}: {}", shown(options.file), tree.ending().place.line,
                      tree.ending().place.column, troubleOf(tree.ending())));
    lines.line(0, say("What stands before: {}", counted));
  }
  lines.gap();
}

Outcome document(const ShowOptions& options, const Tree& tree, const Facts& facts, const StatusSink& status,
                 std::uint64_t bytes, Console& console) {
  Lines lines([&console](const Shown& line) { console.line(line); }, lookOf(options, console));
  DocumentView view(tree, facts, lines);
  head(options, tree, status, bytes, lines);
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
          "Sections with the values that answered, sizes in binary units beside the bytes, tables, bars for "
          "shares and for what is counted, the beginnings of listings; at the end what did not answer, and "
          "why. Lines are cut to the width of the terminal, or to COLUMNS; long tables and listings are cut, "
          "too, and say by how much.\n\n"
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
