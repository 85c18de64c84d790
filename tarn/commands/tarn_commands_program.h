#pragma once
#include <functional>
#include <memory>
#include <string_view>

#include "tarn/commands/tarn_commands_command.h"

namespace CLI {
class App;
}

namespace tarn {

using Run = std::function<Outcome(Console&)>;

/// The parser of the command line with all commands in it; help and the manual are written from it. With
/// `first` it knows only the commands that begin with this word, since each costs every start a little. What
/// a parsed line asks for is left in `chosen`.
std::unique_ptr<CLI::App> makeParser(Run* chosen, std::string_view first = {});

/// One call of tarn: reads the command line, runs the command. The exit status: 0 nothing found, 1 something
/// found, 2 trouble.
int runProgram(int argc, char** argv, Console& console);

}  // namespace tarn
