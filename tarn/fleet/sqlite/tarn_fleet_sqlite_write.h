#pragma once
/// What a loader writes into a file of SQLite's. All of it is within the transaction that the caller began.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tarn/fleet/sqlite/tarn_fleet_sqlite_connection.h"
#include "tarn/fleet/sqlite/tarn_fleet_sqlite_ids.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

class SqliteWriter {
 public:
  /// The numbers are remembered there, so they have to stay.
  SqliteWriter(SqliteConnection& connection, SqliteIds& ids);

  /// Where a document is; nothing when it is not known.
  std::optional<std::string> fileOf(const DocumentHash& hash);
  void write(const FleetBatch& batch);
  /// A document that is known stands in another file now.
  void move(const FleetDocument& document);
  void addCopy(const FleetCopy& copy);

 private:
  /// A fact with its numbers.
  struct Row {
    std::int64_t host, place;
    const FleetFact* fact;
  };
  std::vector<Row> inOrder(const std::vector<FleetFact>& facts);
  std::int64_t hostOf(const FleetFact& fact);
  void addDocument(const FleetDocument& document);
  void addFacts(const std::vector<FleetFact>& facts);
  void setPresent(std::int64_t host, std::int64_t place, std::int64_t value);
  void setLatest(const std::vector<FleetFact>& facts);

  SqliteIds& m_ids;
  SqliteStatement m_findFile, m_addFact, m_setPresent, m_removePresent, m_setLatest, m_addDocument, m_move,
      m_addCopy;
  std::string m_host;  ///< of the facts that are being added
  std::int64_t m_hostId = 0;
};

}  // namespace tarn
