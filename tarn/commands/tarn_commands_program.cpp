#include "tarn/commands/tarn_commands_program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>

#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"

namespace tarn {

namespace {

std::string footerOf(const Command& command) {
  return command.examples.empty() ? "" : "Example:\n  " + command.examples.front().line;
}

/// "fleet load" stands below "fleet", whose row comes first.
CLI::App* parserOf(CLI::App& program, const Command& command) {
  const std::size_t blank = command.name.find(' ');
  if (blank == std::string::npos) {
    return program.add_subcommand(command.name, command.sentence);
  }
  CLI::App* const above = program.get_subcommand(command.name.substr(0, blank));
  return above->add_subcommand(command.name.substr(blank + 1), command.sentence);
}

void declare(CLI::App& program, const Command& command, Run* chosen) {
  CLI::App* const parser = parserOf(program, command);
  parser->footer(footerOf(command));
  if (!command.bind) {  // a name for the commands below it
    parser->require_subcommand(1);
    return;
  }
  CommandLine line(*parser);
  parser->callback([run = command.bind(line), chosen] { *chosen = run; });
}

std::string_view firstWord(const Command& command) {
  return std::string_view(command.name).substr(0, command.name.find(' '));
}

/// The word that chooses among the commands, when it comes first; else nothing.
std::string_view firstWord(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  const auto& all = commands();
  const bool isKnown = std::any_of(all.begin(), all.end(),
                                   [&](const Command& command) { return firstWord(command) == first; });
  return isKnown ? first : "";
}

int statusOf(Outcome outcome, const Console& console) {
  return console.troubled() ? 2 : outcome == Outcome::something ? 1 : 0;
}

/// What the parser has to say instead of running a command: help and version, or what is wrong with the line.
int answer(const CLI::App& program, const CLI::ParseError& said, Console& console) {
  if (said.get_exit_code() != 0) {
    console.trouble(shown(said.what()) + ", see tarn --help");
    return 2;
  }
  std::ostringstream out;
  std::ostringstream err;
  program.exit(said, out, err);
  console.bytes(out.str());
  console.flush();
  return statusOf(Outcome::nothing, console);
}

}  // namespace

std::unique_ptr<CLI::App> makeParser(Run* chosen, std::string_view first) {
  auto program = std::make_unique<CLI::App>(
      "Checks templates, and reads, compares, redacts and keeps the documents that mirel makes.", "tarn");
  program->set_version_flag("--version", "tarn " TARN_VERSION, "Print the version and end");
  program->set_help_flag("--help", "Print this help and end");
  program->require_subcommand(1);
  for (const Command& command : commands()) {
    if (first.empty() || firstWord(command) == first) {
      declare(*program, command, chosen);
    }
  }
  return program;
}

int runProgram(int argc, char** argv, Console& console) {
  Run chosen;
  const std::unique_ptr<CLI::App> program = makeParser(&chosen, firstWord(argc, argv));
  try {
    program->parse(argc, argv);
    const Outcome outcome = chosen(console);
    console.flush();
    return statusOf(outcome, console);
  } catch (const CLI::ParseError& said) {
    return answer(*program, said, console);
  } catch (const std::bad_alloc&) {
    console.trouble("out of memory");
    return 2;
  }
}

}  // namespace tarn
