#include "tarn/fleet/tarn_fleet_database.h"

#include "tarn/fleet/clickhouse/tarn_fleet_clickhouse.h"
#include "tarn/fleet/sqlite/tarn_fleet_sqlite.h"

namespace tarn {

OpenedDatabase openFleet(const std::string& name, bool mustExist) {
  return isClickhouse(name) ? openClickhouse(name, mustExist) : openSqlite(name, mustExist);
}

}  // namespace tarn
