
#include "generator/mirel_generator_template.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_input.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"
#include "tarn/template/tarn_template_plan.h"

namespace tarn {

namespace {

struct PlanOptions {
  std::string file, database;
  bool builtIn = false, json = false;
};

using One = const Step&;

constexpr Member<Step> kMembers[] = {
    {"kind", "\"connect\", \"sql\", \"execute\" or \"read\".",
     [](One step, JsonText& json) { json.element(step.kind); }},
    {"text",
     "The data source, the statement as it is sent, the shell command, or the path as the template has it "
     "(\"SQLDBCONF\" for a database's configuration file).",
     [](One step, JsonText& json) { json.element(step.text); }},
    {"pointer", "The member's place in the result, a JSON Pointer; \"\" for the connection.",
     [](One step, JsonText& json) { json.element(step.pointer); }},
    {"implied", "Whether no member says it in so many words.",
     [](One step, JsonText& json) { json.element(step.implied); }},
};

Shown asText(const Step& step) {
  const std::string place = step.pointer.empty() ? "" : step.pointer + ": ";
  return shown(fmt::format("{:<8}{}{}{}", step.kind, place, step.text, step.implied ? " (implied)" : ""));
}

Outcome printPlan(const PlanOptions& options, Console& console) {
  if (!options.builtIn && options.file.empty()) {
    console.trouble("TEMPLATE or --default is required, see tarn plan --help");
    return Outcome::nothing;
  }
  std::optional<std::string> bytes = options.builtIn ? kDefaultTemplate : readWhole(options.file, console);
  if (!bytes) {
    return Outcome::nothing;
  }
  const TemplateSource source(*std::move(bytes));
  if (!isTemplate(source, options.file, console)) {
    return Outcome::something;
  }
  const auto tell = [&](const Step& step) {
    if (options.json) {
      console.bytes(asJsonLine(kMembers, step));
    } else {
      console.line(asText(step));
    }
  };
  if (!plan(source, options.database, tell)) {
    console.trouble("out of memory");
  }
  return Outcome::nothing;
}

void declareOptions(CommandLine& line, PlanOptions& options) {
  const Option builtIn = line.flag("--default", options.builtIn, "The built-in template");
  line.argument("TEMPLATE", options.file, "The template; - is standard input").type("FILE").excludes(builtIn);
  line.option("-d,--database", options.database, "Data source, taken to answer").type("NAME");
  line.flag("--json", options.json, "One JSON object a line");
}

}  // namespace

Command planCommand() {
  return {.name = "plan",
          .sentence = "List what a run of a template would do to the host",
          .text =
              "Prints, in order, the data source that a run connects to, the statements that it sends, the "
              "shell commands that it starts and the files that its members read, each with the member's "
              "place in the result. Nothing is run or opened to find out. Without -d no statement is sent, "
              "so none is listed.\n\n\"(implied)\" marks what no member says in so many words.\n\n"
              "A template with a syntax error has no plan; its line is that of tarn check, the status 1.",
          .examples = {{"tarn plan --default | head -4",
                        "execute /instanceInfo/versionRaw: katolevel\n"
                        "execute /instanceInfo/environmentVarsRaw: katoset -all\n"
                        "execute /instanceInfo/numberOfDatabasesRaw: kato list database directory\n"
                        "read    /instanceInfo/nodesRaw: $INSTANCEPATH/katonodes.cfg"}},
          .lists = {membersList(kMembers)},
          .bind = bindTo(declareOptions, printPlan)};
}

}  // namespace tarn
