
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_facts.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_outputs.h"
#include "tarn/commands/tarn_commands_reading.h"
#include "tarn/page/tarn_page_write.h"

namespace tarn {

namespace {

struct PageOptions {
  std::string file, newer, out;
  std::vector<std::string> facts;
};

/// A document, and what is found out while it is read.
struct Subject {
  std::string file;
  Path path = Path(Path::Repeated::numbered);
  StatusSink status;
  std::optional<Tree> tree;

  Subject(std::string name, const Facts& facts) : file(std::move(name)), status(facts, path) {}
};

/// False when there is nothing to show; the console was told.
bool read(Console& console, Subject& subject) {
  std::optional<std::string> bytes = readText(console, subject.file);
  if (!bytes) {
    return false;
  }
  Reader reader(subject.status, subject.path);
  reader.feed(*bytes);
  const Ending ending = reader.finish();
  subject.status.finish();
  subject.tree.emplace(std::move(*bytes));
  if (ending.state != State::whole) {
    console.problem(subject.file, ending.place, troubleOf(ending));
  }
  return !subject.tree->empty();
}

bool isInput(const PageOptions& options) {
  return sameFile(options.out, options.file) ||
         (!options.newer.empty() && sameFile(options.out, options.newer));
}

Outcome outcomeOf(const Subject& subject) {
  return subject.tree->ending().state == State::whole ? Outcome::nothing : Outcome::something;
}

Outcome page(const PageOptions& options, Console& console) {
  const std::optional<Facts> facts = loadFacts(options.facts, console);
  if (!facts) {
    return Outcome::nothing;
  }
  if (isInput(options)) {
    console.trouble(options.out, "is an input, which is never written over");
    return Outcome::nothing;
  }
  Subject older(options.file, *facts);
  Subject newer(options.newer, *facts);
  const bool two = !options.newer.empty();
  if (!read(console, older) || (two && !read(console, newer))) {
    return Outcome::something;
  }
  const Subject& subject = two ? newer : older;
  std::optional<Comparison> comparison;
  if (two) {
    comparison.emplace(*older.tree, *newer.tree, *facts, ComparisonOptions());
  }
  const std::optional<std::string> text =
      pageOf({subject.file, *subject.tree, *facts, subject.status, comparison ? &*comparison : nullptr,
              older.status.roles()[Role::time].value_or(older.file)});
  if (!text) {
    console.trouble("out of memory");
  } else {
    writeOutput(options.out, *text, console);
  }
  return std::max(outcomeOf(older), outcomeOf(subject));
}

void declareOptions(CommandLine& line, PageOptions& options) {
  line.argument("FILE", options.file, "The document; - is standard input").required();
  line.argument("NEWER", options.newer, "A newer one: the page shows it, and what changed on top");
  line.option("-o", options.out, "Write the page to this file; - is standard output")
      .required()
      .type("PAGE.html");
  declareFacts(line, options.facts);
}

constexpr const char* kText =
    "Writes a page for a browser: one file that needs nothing else, and asks nobody for anything, so it can "
    "be "
    "mailed and opened where it lies. It shows what the document is, what did not answer and why, and the "
    "whole of "
    "the document: tables that sort and filter, charts, listings, with a search over everything and a link "
    "to every "
    "place. It works by keyboard, with a screen reader, in the dark and on paper. Without JavaScript the "
    "summary "
    "on top is still there.\n\n"
    "With two documents the page is the newer one's, with what changed on top, as diff tells it.\n\n"
    "The file can only be read by its owner, since documents hold environment variables. Of a document that "
    "is not "
    "whole the page shows what is there; the status is 1 then.";

}  // namespace

Command pageCommand() {
  return {.name = "page",
          .sentence = "Write a document as one page for a browser",
          .text = kText,
          .examples = {{"tarn page sample.json later.json -o page.html && ls page.html", "page.html"}},
          .bind = bindTo<PageOptions>(declareOptions, page)};
}

}  // namespace tarn
