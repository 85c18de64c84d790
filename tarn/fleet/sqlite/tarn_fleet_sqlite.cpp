#include "tarn/fleet/sqlite/tarn_fleet_sqlite.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstring>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/sqlite/tarn_fleet_sqlite_ids.h"
#include "tarn/fleet/sqlite/tarn_fleet_sqlite_write.h"
#include "tarn/fleet/tarn_fleet_sql.h"

namespace tarn {

namespace {

constexpr std::int64_t kApplication = 0x7461726E;  // "tarn"
constexpr std::int64_t kForm = 3;

constexpr const char* kFindRows = "SELECT since, place, value, void FROM fact WHERE host = ? ORDER BY since";
constexpr const char* kFindDocuments =
    "SELECT moment, scopes FROM document WHERE host = ? AND moment > ? AND problem = '' ORDER BY moment";
constexpr const char* kFindTexts =
    "SELECT place.text, pointer, scope, value.text FROM fact JOIN place ON place.id = fact.place "
    "LEFT JOIN value ON value.id = fact.value "
    "WHERE host = ? AND since = ? AND place IN (SELECT id FROM place WHERE hash = ?)";

std::vector<std::uint64_t> unpacked(std::string_view bytes) {
  std::vector<std::uint64_t> scopes(bytes.size() / sizeof(std::uint64_t));
  for (std::uint64_t& scope : scopes) {
    memcpy(&scope, bytes.data(), sizeof scope);
    bytes.remove_prefix(sizeof scope);
  }
  return scopes;
}

std::string quoted(std::string_view text) {
  std::string literal = "'";
  for (const char byte : text) {
    literal += byte == '\'' ? "''" : std::string(1, byte);
  }
  return literal + "'";
}

/// The statements of a loader.
struct LoaderStatements {
  explicit LoaderStatements(SqliteConnection& connection)
      : ids(connection),
        findRows(connection, kFindRows),
        findDocuments(connection, kFindDocuments),
        findTexts(connection, kFindTexts),
        writer(connection, ids) {}

  SqliteIds ids;
  SqliteStatement findRows, findDocuments, findTexts;
  SqliteWriter writer;
};

class SqliteFleet : public FleetDatabase {
 public:
  FleetProblem open(const std::string& file, bool mustExist);

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
  bool hasTables();
  void checkForm();

  SqliteConnection m_connection;
  std::unique_ptr<LoaderStatements> m_loader;
};

FleetProblem SqliteFleet::open(const std::string& file, bool mustExist) {
  m_connection.open(file, mustExist);
  if (mustExist) {
    checkForm();
  }
  return m_connection.takeProblem();
}

void SqliteFleet::checkForm() {
  const std::int64_t application = m_connection.number("PRAGMA application_id");
  const std::int64_t form = m_connection.number("PRAGMA user_version");
  if (application != kApplication) {
    m_connection.fail("not the database of a fleet");
  } else if (form != kForm) {
    m_connection.fail(
        fmt::format("of form {}, this tarn knows form {}: load the store into a new file", form, kForm));
  }
}

bool SqliteFleet::hasTables() {
  return m_connection.number("SELECT count(*) FROM sqlite_schema") != 0;
}

// What is not ours is left as it is. Two that make the same file at once wait for each other, and the later
// one finds it made.
FleetProblem SqliteFleet::create() {
  if (hasTables()) {
    checkForm();
  }
  m_connection.run("PRAGMA page_size = 8192; PRAGMA synchronous = NORMAL; PRAGMA cache_size = -131072");
  m_connection.runAlone("PRAGMA journal_mode = WAL");
  m_connection.run("BEGIN IMMEDIATE");
  if (!hasTables()) {
    m_connection.run(std::string(packedSql("sqlite/schema")));
    m_connection.run(
        fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}", kApplication, kForm));
  }
  checkForm();
  m_connection.run("COMMIT");
  if (m_connection.isGood()) {
    m_loader = std::make_unique<LoaderStatements>(m_connection);
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::lock(const std::function<bool()>& waiting) {
  int code = SQLITE_BUSY;
  do {
    code = sqlite3_exec(m_connection.handle(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  } while (code == SQLITE_BUSY && waiting());
  if (code != SQLITE_OK) {
    m_connection.fail();
  }
  return m_connection.takeProblem();
}

/// What was not written is taken back.
FleetProblem SqliteFleet::unlock() {
  if (sqlite3_get_autocommit(m_connection.handle()) == 0) {
    m_connection.run("ROLLBACK");
    m_loader->ids.clear();
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::seenFiles(std::unordered_set<std::int64_t>* seen) {
  SqliteStatement statement(m_connection, "SELECT seen FROM document");
  while (statement.step()) {
    seen->insert(statement.integer(0));
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::copies(std::vector<FleetCopy>* copies) {
  SqliteStatement statement(m_connection, "SELECT seen, other FROM copy");
  while (statement.step()) {
    copies->push_back({statement.integer(0), std::string(statement.text(1))});
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::known(std::span<const DocumentHash> hashes, std::vector<KnownDocument>* known) {
  for (std::size_t at = 0; at < hashes.size(); ++at) {
    if (std::optional<std::string> file = m_loader->writer.fileOf(hashes[at])) {
      known->push_back({at, *std::move(file)});
    }
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::read(std::span<const HostWanted> hosts, std::vector<HostHistory>* histories) {
  for (const HostWanted& host : hosts) {
    HostHistory& history = histories->emplace_back();
    const std::int64_t id = m_loader->ids.findHost(host.name);
    SqliteStatement& documents = m_loader->findDocuments;
    for (documents.bind(id).bind(host.after); documents.step();) {
      history.documents.push_back({documents.integer(0), unpacked(documents.text(1))});
    }
    SqliteStatement& rows = m_loader->findRows;
    for (rows.bind(id); rows.step();) {
      const SqliteIds::PlaceHashes place = m_loader->ids.placeHashes(rows.integer(1));
      const std::uint64_t value = rows.isNull(2) ? 0 : m_loader->ids.valueHash(rows.integer(2));
      history.rows.push_back({place.text, place.scope, rows.integer(0), value, rows.integer(3) != 0});
    }
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::texts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) {
  for (const RowWanted& row : rows) {
    SqliteStatement& statement = m_loader->findTexts;
    statement.bind(m_loader->ids.findHost(row.host))
        .bind(row.since)
        .bind(static_cast<std::int64_t>(row.place));
    RowTexts& found = texts->emplace_back();
    if (statement.step()) {
      const auto text = [&statement](int column) { return std::string(statement.text(column)); };
      found = {{text(0), text(1), text(2)}, text(3)};
      statement.reset();
    }
  }
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::write(const FleetBatch& batch) {
  m_loader->writer.write(batch);
  m_connection.run("COMMIT");
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::moved(const FleetDocument& document) {
  m_loader->writer.move(document);
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::copied(const FleetCopy& copy) {
  m_loader->writer.addCopy(copy);
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::ask(const FleetQuestion& question, const TakeRow& take) {
  SqliteStatement statement(m_connection, sql(question));
  std::vector<std::string_view> row(static_cast<std::size_t>(statement.columns()));
  bool goesOn = true;
  while (goesOn && statement.step()) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      row[column] = statement.text(static_cast<int>(column));
    }
    goesOn = take(row);
  }
  return m_connection.takeProblem();
}

std::string SqliteFleet::sql(const FleetQuestion& question) const {
  return filledSql(packedSql("sqlite/" + question.name), question.values, quoted);
}

}  // namespace

OpenedDatabase openSqlite(const std::string& file, bool mustExist) {
  auto database = std::make_unique<SqliteFleet>();
  FleetProblem problem = database->open(file, mustExist);
  if (problem) {
    database.reset();
  }
  return {std::move(database), std::move(problem)};
}

}  // namespace tarn
