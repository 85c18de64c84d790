
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_input.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/template/tarn_template_check.h"

namespace tarn {

namespace {

struct CheckOptions {
  std::vector<std::string> files;
  std::vector<std::string> allowed;
  bool json = false;
};

struct PlacedFinding {
  const std::string& file;
  const Finding& finding;
  Place place;
};

using One = const PlacedFinding&;

constexpr Member<PlacedFinding> kMembers[] = {
    {"file", "The template as it was named.", [](One one, JsonText& json) { json.element(one.file); }},
    {"line", "Line of the place, from 1. A line feed inside a string begins none, as in what mirel prints.",
     [](One one, JsonText& json) { json.element(one.place.line); }},
    {"column", "Column of the place, in bytes from 1.",
     [](One one, JsonText& json) { json.element(one.place.column); }},
    {"level", "\"error\" for what loses something for certain, else \"warning\".",
     [](One one, JsonText& json) { json.element(nameOf(one.finding.rule->level)); }},
    {"rule", "The rule, as --allow takes it.",
     [](One one, JsonText& json) { json.element(one.finding.rule->id); }},
    {"text", "What is wrong.", [](One one, JsonText& json) { json.element(one.finding.text); }},
    {"hint", "What to write instead.", [](One one, JsonText& json) { json.element(one.finding.hint); }},
};

Outcome checkFile(const std::string& file, const CheckOptions& options, Console& console) {
  std::optional<std::string> bytes = readWhole(file, console);
  if (!bytes) {
    return Outcome::nothing;
  }
  const TemplateSource source(*std::move(bytes));
  const std::vector<Finding> findings = check(source, {options.allowed.begin(), options.allowed.end()});
  for (const Finding& finding : findings) {
    const PlacedFinding placed = {file, finding, source.place(finding.offset)};
    if (options.json) {
      console.bytes(asJsonLine(kMembers, placed));
    } else {
      console.problem(file, placed.place, asText(finding));
    }
  }
  return findings.empty() ? Outcome::nothing : Outcome::something;
}

Outcome checkFiles(const CheckOptions& options, Console& console) {
  Outcome outcome = Outcome::nothing;
  for (const std::string& file : options.files) {
    outcome = std::max(outcome, checkFile(file, options, console));
  }
  return outcome;
}

List rulesList() {
  List list = {.title = "Rules", .type = "RULE", .entries = {}};
  for (const Rule& rule : rules()) {
    if (*rule.why != '\0') {
      list.entries.push_back({rule.id, rule.why});
    }
  }
  return list;
}

void declareOptions(CommandLine& line, CheckOptions& options) {
  std::set<std::string> known;
  for (const Rule& rule : rules()) {
    known.insert(rule.id);
  }
  line.argument("TEMPLATE", options.files, "Templates; - is standard input").required().type("FILE");
  line.option("--allow", options.allowed, "Leave this rule out; may be repeated").type("RULE").oneOf(known);
  line.flag("--json", options.json, "One JSON object a line on standard output");
}

}  // namespace

Command checkCommand() {
  return {.name = "check",
          .sentence = "Tell what the author of a template cannot have meant",
          .text =
              "Reads each template as mirel does and prints a line for everything that is lost, copied or "
              "ignored without a word when it runs, with its place and what to write instead. Where mirel "
              "would end with a syntax error, the line that it would print is there, and what the cause "
              "likely is.\n\nNothing is run. Status 1 when there is any line.",
          .examples = {{"echo '{\"os\": \"native os nmae\"}' | tarn check -",
                        "tarn: -:1:19: error: \"os\" knows no \"nmae\"; write \"name\" [item]"}},
          .lists = {rulesList(), membersList(kMembers)},
          .bind = bindTo(declareOptions, checkFiles)};
}

}  // namespace tarn
