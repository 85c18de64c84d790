#pragma once
/// A batch on its way into the database: what of it is new, and which rows its documents make.

#include <vector>

#include "tarn/fleet/load/tarn_fleet_load.h"
#include "tarn/fleet/load/tarn_fleet_read.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

/// Writes what is new. The database is locked.
FleetProblem writeBatch(std::vector<ReadDocument>& documents, FleetDatabase& database, LoadCounts* counts);

}  // namespace tarn
