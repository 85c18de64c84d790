#pragma once
/// The fleet's database on ClickHouse: one server, or a cluster behind one server's `Distributed` tables.
///
/// A batch goes into the tables one after the other: histories, facts, what changes by itself, documents. A
/// loader decides by histories and documents alone; what one that was killed has not written into the others
/// the next one writes before anything else.

#include "tarn/fleet/clickhouse/tarn_fleet_claim.h"
#include "tarn/fleet/clickhouse/tarn_fleet_http.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

/// Whether that is the name of a database on ClickHouse: `clickhouse://…`.
bool isClickhouse(const std::string& name);
/// `clickhouse://HOST[:PORT]/DATABASE`; see `openFleet`. The port is 8123 when none is told. With `mustExist`
/// the server is asked.
OpenedDatabase openClickhouse(const std::string& name, bool mustExist);

class ClickhouseDatabase : public FleetDatabase {
 public:
  ClickhouseDatabase(const FleetHttp::Server& server, std::string database);

  /// Whether the database is there, and one of ours.
  FleetProblem check();

  FleetProblem create() override;
  FleetProblem lock(const std::function<bool()>& waiting) override;
  FleetProblem unlock() override;
  FleetProblem seenFiles(std::unordered_set<std::int64_t>* seen) override;
  FleetProblem copies(std::vector<FleetCopy>* copies) override;
  FleetProblem known(std::span<const DocumentHash> hashes, std::vector<KnownDocument>* known) override;
  FleetProblem read(std::span<const HostWanted> hosts, std::vector<HostHistory>* histories) override;
  FleetProblem texts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) override;
  FleetProblem write(const FleetBatch& batch) override;
  FleetProblem moved(const FleetDocument& document) override;
  FleetProblem copied(const FleetCopy& copy) override;
  FleetProblem ask(const FleetQuestion& question, const TakeRow& take) override;
  std::string sql(const FleetQuestion& question) const override;

 private:
  struct MovedDocument {
    DocumentHash hash;
    std::string file;
    std::int64_t seen;
  };

  FleetProblem told(const HttpOutcome& outcome) const;
  FleetProblem readDocuments(const std::string& hosts, std::span<const HostWanted> wanted,
                             std::vector<HostHistory>* histories);
  FleetProblem readRows(const std::string& hosts, std::span<const HostWanted> wanted,
                        std::vector<HostHistory>* histories);
  FleetProblem readTexts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts);
  FleetProblem makeTables();
  HttpOutcome finishOthersWork();
  FleetProblem writeMoved();
  FleetProblem writeCopies();

  FleetHttp m_http;
  FleetClaim m_claim;
  bool m_isWhole = true;  ///< what has been written since the claim was taken
  std::string m_database;
  std::vector<MovedDocument> m_moved;
  std::vector<FleetCopy> m_copies;
};

}  // namespace tarn
