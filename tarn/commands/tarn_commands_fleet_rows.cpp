#include "tarn/commands/tarn_commands_fleet_rows.h"

#include <algorithm>
#include <chrono>

#include "tarn/fleet/tarn_fleet_time.h"

namespace tarn {

namespace {

std::optional<std::uint64_t> someCount(std::string_view cell) {
  const std::uint64_t count = countOf(cell);
  return count == 0 ? std::nullopt : std::optional(count);
}

}  // namespace

FleetHost fleetHost(FleetRow row) {
  return {.name = std::string(row[0]),
          .file = std::string(row[2]),
          .state = std::string(row[3]),
          .moment = momentOf(row[1]),
          .problem = someText(row[4]),
          .engine = someText(row[5]),
          .version = someText(row[6]),
          .database = someText(row[7]),
          .answered = countOf(row[8]),
          .asked = countOf(row[9]),
          .documents = countOf(row[10])};
}

FleetTrouble fleetTrouble(FleetRow row) {
  return {.file = std::string(row[0]),
          .state = std::string(row[3]),
          .problem = std::string(row[4]),
          .host = someText(row[1]),
          .moment = momentOf(row[2]),
          .line = someCount(row[5]),
          .column = someCount(row[6])};
}

FleetDrift fleetDrift(FleetRow row) {
  return {.pointer = std::string(row[0]), .hosts = countOf(row[1]), .changes = countOf(row[2])};
}

Moment momentBefore(double days) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const double past = days * static_cast<double>(kSecondsPerDay * kMomentsPerSecond);
  const auto moment = static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
  return static_cast<Moment>(std::max(0.0, moment - past));
}

}  // namespace tarn
