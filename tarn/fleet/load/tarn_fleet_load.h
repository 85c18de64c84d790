#pragma once
/// Loads a store into a database, in batches: while one is written, the next one is read.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tarn/facts/tarn_facts_table.h"
#include "tarn/fleet/load/tarn_fleet_log.h"
#include "tarn/fleet/load/tarn_fleet_store.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

struct LoadCounts {
  std::uint64_t documents = 0;  ///< that were new
  std::uint64_t problems = 0;   ///< of these, those whose facts were not taken
  std::uint64_t known = 0;      ///< in another file
  std::uint64_t unchanged = 0;  ///< files that an earlier load has seen
  std::uint64_t bytes = 0;      ///< of the new documents
};

/// Who looks on. All are called from the thread that loads.
struct LoadWatch {
  std::function<void(const LoadCounts&)> progress;
  std::function<void(const StoreTrouble&)> trouble;  ///< a file that could not be read; the others go on
  std::function<void()> waiting;                     ///< another loader is at work
  std::function<bool()> stopped;                     ///< asked often, from both threads
};

/// Loads what is new. The database has been made. After a problem, and when it was stopped, the batches
/// before are loaded; a later load does the rest.
FleetProblem loadStores(const std::vector<std::string>& stores, const Facts& facts, const ExchangeLog& log,
                        const LoadWatch& watch, FleetDatabase& database, LoadCounts* counts);

}  // namespace tarn
