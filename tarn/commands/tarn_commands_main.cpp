#include <signal.h>
#include <unistd.h>

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_program.h"

namespace {

/// A limit on the size of files is an error of the write, no more. A handler, not SIG_IGN, which commands
/// that are run would inherit.
void surviveLimits() {
  struct sigaction action = {};
  action.sa_handler = [](int) {};
  sigaction(SIGXFSZ, &action, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  surviveLimits();
  tarn::Console console(STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO);
  return tarn::runProgram(argc, argv, console);
}
