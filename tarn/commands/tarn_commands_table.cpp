#include "tarn/commands/tarn_commands_command.h"

namespace tarn {

Command diffCommand();
Command redactCommand();
Command restoreCommand();
Command strictCommand();
Command templateCommand();

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      strictCommand(), diffCommand(), redactCommand(), restoreCommand(), templateCommand(),
  };
  return all;
}

}  // namespace tarn
