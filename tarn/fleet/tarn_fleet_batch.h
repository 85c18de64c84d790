#pragma once
/// A batch on its way into the database: what of it is new, and which rows its documents make.

#include <memory>
#include <vector>

#include "tarn/fleet/tarn_fleet_database.h"
#include "tarn/fleet/tarn_fleet_load.h"
#include "tarn/fleet/tarn_fleet_read.h"

namespace tarn {

/// Documents as they were read, and what else there is to say of their files.
struct LoadBatch {
  std::vector<ReadDocument> documents;
  std::vector<StoreTrouble> troubles;
  std::shared_ptr<FleetPlaces> places;  ///< those of the documents
  std::uint64_t unchanged = 0;
  bool isLast = false;
};

/// Writes what is new. The database is locked.
FleetProblem writeBatch(std::vector<ReadDocument>& documents, FleetDatabase& database, LoadCounts* counts);

}  // namespace tarn
