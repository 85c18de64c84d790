#include "tarn/commands/tarn_commands_command.h"

namespace tarn {

Command diffCommand();
Command redactCommand();
Command restoreCommand();
Command showCommand();
Command statusCommand();
Command strictCommand();
Command templateCommand();

const std::vector<Command>& commands() {
  // clang-format off
  static const std::vector<Command> all = {
      strictCommand(),
      statusCommand(),
      showCommand(),
      diffCommand(),
      redactCommand(),
      restoreCommand(),
      templateCommand(),
  };
  // clang-format on
  return all;
}

}  // namespace tarn
