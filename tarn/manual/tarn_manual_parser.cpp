#include "tarn/manual/tarn_manual_parser.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace tarn {

namespace {

/// Both kinds; `get_options` gives those that have a name, too, when they are arguments as well.
std::vector<const CLI::Option*> declared(const CLI::App& parser, bool positional) {
  return parser.get_options(
      [positional](const CLI::Option* option) { return option->get_positional() == positional; });
}

}  // namespace

const CLI::App& parserOf(const CLI::App& program, const Command& command) {
  std::istringstream words(command.name);
  const CLI::App* parser = &program;
  for (std::string word; words >> word;) {
    parser = parser->get_subcommand(word);
  }
  return *parser;
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& parser) {
  return declared(parser, false);
}

std::vector<const CLI::Option*> positionalsOf(const CLI::App& parser) {
  return declared(parser, true);
}

std::vector<std::string> spellingsOf(const CLI::Option& option) {
  std::vector<std::string> spellings;
  for (const std::string& name : option.get_snames()) {
    spellings.push_back("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    spellings.push_back("--" + name);
  }
  return spellings;
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

}  // namespace tarn
