#include <unistd.h>

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_program.h"

int main(int argc, char** argv) {
  tarn::Console console(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO);
  return tarn::runProgram(argc, argv, console);
}
