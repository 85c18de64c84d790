#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "tarn/commands/tarn_commands_program.h"
#include "tarn/manual/tarn_manual_parser.h"
#include "tarn/manual/tarn_manual_slots.h"

namespace tarn {

namespace {

/// One branch of a shell's case: `'fleet load') echo '--into --help' ;;`
std::string branch(const std::string& pattern, const std::string& words) {
  return words.empty() ? "" : fmt::format("    {}) echo '{}' ;;\n", pattern, words);
}

std::string joined(const std::vector<std::string>& words, const char* separator) {
  return fmt::format("{}", fmt::join(words, separator));
}

std::string wordsBehind(const CLI::App& parser) {
  std::vector<std::string> words;
  for (const CLI::App* const below : parser.get_subcommands({})) {
    words.push_back(below->get_name());
  }
  for (const CLI::Option* const option : optionsOf(parser)) {
    const std::vector<std::string> spellings = spellingsOf(*option);
    words.insert(words.end(), spellings.begin(), spellings.end());
  }
  return joined(words, " ");
}

/// The words that an option of that command takes, where there is a list of them.
std::string valuesOf(const CLI::Option& option, const Command& command) {
  std::vector<std::string> values;
  for (const List& list : command.lists) {
    if (!list.type.empty() && list.type == option.get_type_name()) {
      for (const Entry& entry : list.entries) {
        values.push_back(entry.word);
      }
    }
  }
  return joined(values, " ");
}

/// `'redact --keep' | 'redact -k'`
std::string patternOf(const Command& command, const CLI::Option& option) {
  std::vector<std::string> patterns;
  for (const std::string& spelling : spellingsOf(option)) {
    patterns.push_back("'" + command.name + " " + spelling + "'");
  }
  return joined(patterns, " | ");
}

std::string caseOf(const char* name, const std::string& branches) {
  return fmt::format("{}() {{\n  case $1 in\n{}  esac\n}}\n", name, branches);
}

}  // namespace

std::string completionOfCommands() {
  Run unused;
  const std::unique_ptr<CLI::App> program = makeParser(&unused);
  std::string words = branch("''", wordsBehind(*program));
  std::string values;
  for (const Command& command : commands()) {
    const CLI::App& parser = parserOf(*program, command);
    words += branch("'" + command.name + "'", wordsBehind(parser));
    for (const CLI::Option* const option : optionsOf(parser)) {
      if (takesValue(*option)) {
        // A blank: it takes a value, which is a file's name where no list tells otherwise.
        const std::string known = valuesOf(*option, command);
        values += branch(patternOf(command, *option), known.empty() ? " " : known);
      }
    }
  }
  return caseOf("_tarn_words", words) + "\n" + caseOf("_tarn_values", values + "    *) return 1 ;;\n");
}

}  // namespace tarn
