#pragma once
/// What the manual and the completion ask of the parser of a command.

#include <string>
#include <vector>

#include "tarn/commands/tarn_commands_command.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarn {

/// The parser of a command, "fleet load" below "fleet".
const CLI::App& parserOf(const CLI::App& program, const Command& command);

/// Its options, and its arguments without a name, in the order in which they were declared.
std::vector<const CLI::Option*> optionsOf(const CLI::App& parser);
std::vector<const CLI::Option*> positionalsOf(const CLI::App& parser);

/// "-o", "--output"
std::vector<std::string> spellingsOf(const CLI::Option& option);

bool takesValue(const CLI::Option& option);

}  // namespace tarn
