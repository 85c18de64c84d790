#pragma once

namespace tarn {

class Console;

/// One call of tarn: reads the command line, runs the command. The exit status: 0 nothing found, 1 something
/// found, 2 trouble.
int runProgram(int argc, char** argv, Console& console);

}  // namespace tarn
