#pragma once
/// Rows of answers as records.

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tarn/commands/tarn_commands_fleet.h"

namespace tarn {

using FleetRow = std::span<const std::string_view>;

/// A host with its newest document (hostsQuestion).
struct FleetHost {
  std::string name, file, state;
  Moment moment = 0;
  std::optional<std::string> problem, engine, version, database;
  std::uint64_t answered = 0, asked = 0, documents = 0;
};
FleetHost fleetHost(FleetRow row);

/// A document whose facts were not taken (problemsQuestion).
struct FleetTrouble {
  std::string file, state, problem;
  std::optional<std::string> host;
  Moment moment = 0;
  std::optional<std::uint64_t> line, column;
};
FleetTrouble fleetTrouble(FleetRow row);

/// Pointers that changed (driftQuestion).
struct FleetDrift {
  std::string pointer;
  std::uint64_t hosts = 0, changes = 0;
};
FleetDrift fleetDrift(FleetRow row);

/// The moment that lies so many days back.
Moment momentBefore(double days);

}  // namespace tarn
