#include "tarn/commands/tarn_commands_command.h"

namespace tarn {

Command diffCommand();
Command pageCommand();
Command redactCommand();
Command restoreCommand();
Command showCommand();
Command statusCommand();
Command strictCommand();
Command templateCommand();
Command checkCommand();
Command planCommand();
Command tryCommand();
Command fleetCommand();
Command fleetLoadCommand();

const std::vector<Command>& commands() {
  // clang-format off
  static const std::vector<Command> all = {
      strictCommand(),
      statusCommand(),
      showCommand(),
      pageCommand(),
      diffCommand(),
      redactCommand(),
      restoreCommand(),
      templateCommand(),
      checkCommand(),
      planCommand(),
      tryCommand(),
      fleetCommand(),
      fleetLoadCommand(),
  };
  // clang-format on
  return all;
}

}  // namespace tarn
