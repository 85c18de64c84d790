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
  static const std::vector<Command> all = [] {
    std::vector<Command> rows;
    // clang-format off
    for (Command (*const row)() : {
             strictCommand,
             statusCommand,
             showCommand,
             pageCommand,
             diffCommand,
             redactCommand,
             restoreCommand,
             templateCommand,
             checkCommand,
             planCommand,
             tryCommand,
             fleetCommand,
             fleetLoadCommand,
             fleetHostsCommand,
             fleetWhereCommand,
             fleetSpreadCommand,
             fleetHistoryCommand,
             fleetDriftCommand,
             fleetGetCommand,
             fleetPageCommand,
         }) {
      rows.push_back(row());
    }
    // clang-format on
    return rows;
  }();
  return all;
}

}  // namespace tarn
