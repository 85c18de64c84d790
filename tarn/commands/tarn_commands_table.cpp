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
Command fleetHostsCommand();
Command fleetWhereCommand();
Command fleetSpreadCommand();
Command fleetHistoryCommand();
Command fleetDriftCommand();
Command fleetGetCommand();
Command fleetPageCommand();

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
      fleetHostsCommand(),
      fleetWhereCommand(),
      fleetSpreadCommand(),
      fleetHistoryCommand(),
      fleetDriftCommand(),
      fleetGetCommand(),
      fleetPageCommand(),
  };
  // clang-format on
  return all;
}

}  // namespace tarn
