#include "tarn/commands/tarn_commands_command.h"

namespace tarn {

Command strictCommand();
Command templateCommand();

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      strictCommand(),
      templateCommand(),
  };
  return all;
}

}  // namespace tarn
