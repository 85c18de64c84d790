#pragma once
/// A fleet's database in one file, by SQLite. Its tables stand in sqlite/schema.sql.
///
/// Reading goes on while a loader writes (WAL); loaders take turns, a batch each.

#include <string>

#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

OpenedDatabase openSqlite(const std::string& file, bool mustExist);

}  // namespace tarn
