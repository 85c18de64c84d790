#include "tarn/commands/tarn_commands_command.h"

namespace tarn {

Command templateCommand();

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      templateCommand(),
  };
  return all;
}

}  // namespace tarn
