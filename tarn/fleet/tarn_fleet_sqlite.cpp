#include "tarn/fleet/tarn_fleet_sqlite.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstring>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/tarn_fleet_sql.h"
#include "tarn/fleet/tarn_fleet_sqlite_ids.h"

namespace tarn {

namespace {

constexpr std::int64_t kApplication = 0x7461726E;  // "tarn"
constexpr std::int64_t kForm = 1;

constexpr const char* kFindRows = "SELECT since, place, value, void FROM fact WHERE host = ? ORDER BY since";
constexpr const char* kFindDocuments =
    "SELECT moment, scopes FROM document WHERE host = ? AND moment > ? AND problem = '' ORDER BY moment";
constexpr const char* kFindTexts =
    "SELECT place.text, pointer, scope, value.text FROM fact JOIN place ON place.id = fact.place "
    "LEFT JOIN value ON value.id = fact.value "
    "WHERE host = ? AND since = ? AND place IN (SELECT id FROM place WHERE hash = ?)";
constexpr const char* kAddFact =
    "INSERT INTO fact (host, since, place, value, void) VALUES (?, ?, ?, ?, ?) "
    "ON CONFLICT (host, since, place) DO UPDATE SET value = excluded.value, void = excluded.void";
constexpr const char* kAddLatest = "INSERT INTO latest (host, place, since, value) VALUES (?, ?, ?, ?)";
constexpr const char* kAddDocument =
    "INSERT OR IGNORE INTO document (hash, host, moment, file, bytes, seen, state, problem, line, "
    "\"column\", "
    "host_from, time_from, engine, version, database, answered, asked, scopes) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

std::string_view bytesOf(const DocumentHash& hash) {
  return {reinterpret_cast<const char*>(hash.data()), hash.size()};
}

std::string packed(const std::vector<std::string>& scopes) {
  std::string bytes;
  for (const std::string& scope : scopes) {
    const std::uint64_t hash = sipHash(scope);
    bytes.append(reinterpret_cast<const char*>(&hash), sizeof hash);
  }
  return bytes;
}

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

std::int64_t signedOf(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

/// The statements of a loader.
struct LoaderStatements {
  explicit LoaderStatements(SqliteConnection& connection)
      : ids(connection),
        isKnown(connection, "SELECT 1 FROM document WHERE hash = ?"),
        findRows(connection, kFindRows),
        findDocuments(connection, kFindDocuments),
        findTexts(connection, kFindTexts),
        addFact(connection, kAddFact),
        findLatest(connection, "SELECT since, value FROM latest WHERE host = ? AND place = ?"),
        addLatest(connection, kAddLatest),
        renewLatest(connection, "UPDATE latest SET since = ? WHERE host = ? AND place = ?"),
        addDocument(connection, kAddDocument),
        move(connection, "UPDATE document SET file = ?, seen = ? WHERE hash = ?") {}

  SqliteIds ids;
  SqliteStatement isKnown, findRows, findDocuments, findTexts, addFact, findLatest, addLatest, renewLatest,
      addDocument, move;
};

class SqliteFleet : public FleetDatabase {
 public:
  FleetProblem open(const std::string& file, bool mustExist);

  FleetProblem create() override;
  FleetProblem lock(const std::function<bool()>& waiting) override;
  FleetProblem unlock() override;
  FleetProblem seenFiles(std::unordered_set<std::int64_t>* seen) override;
  FleetProblem known(std::span<const DocumentHash> hashes, std::vector<std::size_t>* known) override;
  FleetProblem read(std::span<const HostWanted> hosts, std::vector<HostHistory>* histories) override;
  FleetProblem texts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) override;
  FleetProblem write(const FleetBatch& batch) override;
  FleetProblem moved(const FleetDocument& document) override;
  FleetProblem ask(const FleetQuestion& question, const TakeRow& take) override;
  std::string sql(const FleetQuestion& question) const override;

 private:
  bool hasTables();
  void checkForm();
  std::int64_t hostOf(const FleetFact& fact);
  void addDocument(const FleetDocument& document);
  void addFacts(const std::vector<FleetFact>& facts);
  void addLatest(const std::vector<FleetFact>& facts);

  SqliteConnection m_connection;
  std::unique_ptr<LoaderStatements> m_loader;
  std::string m_host;  ///< of the facts that are being added
  std::int64_t m_hostId = 0;
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
    m_connection.fail(fmt::format("of form {}, this tarn knows form {}", form, kForm));
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
  m_connection.run("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA cache_size = -131072");
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

FleetProblem SqliteFleet::known(std::span<const DocumentHash> hashes, std::vector<std::size_t>* known) {
  for (std::size_t at = 0; at < hashes.size(); ++at) {
    if (m_loader->isKnown.bindBlob(bytesOf(hashes[at])).step()) {
      known->push_back(at);
      m_loader->isKnown.reset();
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
    statement.bind(m_loader->ids.findHost(row.host)).bind(row.since).bind(signedOf(row.place));
    RowTexts& found = texts->emplace_back();
    if (statement.step()) {
      const auto text = [&statement](int column) { return std::string(statement.text(column)); };
      found = {{text(0), text(1), text(2)}, text(3)};
      statement.reset();
    }
  }
  return m_connection.takeProblem();
}

void SqliteFleet::addDocument(const FleetDocument& document) {
  const std::string scopes = packed(document.scopes);
  SqliteStatement& add = m_loader->addDocument;
  add.bindBlob(bytesOf(document.hash));
  document.host.empty() ? add.bindNull() : add.bind(m_loader->ids.host(document.host));
  add.bind(document.moment).bind(document.file).bind(signedOf(document.bytes)).bind(document.seen);
  add.bind(document.state).bind(document.problem);
  add.bind(signedOf(document.line)).bind(signedOf(document.column));
  add.bind(document.hostFrom).bind(document.timeFrom);
  add.bind(document.engine).bind(document.version).bind(document.database);
  add.bind(signedOf(document.answered)).bind(signedOf(document.asked)).bindBlob(scopes).step();
}

void SqliteFleet::addFacts(const std::vector<FleetFact>& facts) {
  SqliteStatement& add = m_loader->addFact;
  for (const FleetFact& fact : facts) {
    const std::int64_t place = m_loader->ids.place(*fact.place);
    add.bind(hostOf(fact)).bind(fact.since).bind(place);
    fact.value ? add.bind(m_loader->ids.value(*fact.value)) : add.bindNull();
    add.bind(std::int64_t{fact.isVoid}).step();
  }
}

void SqliteFleet::addLatest(const std::vector<FleetFact>& facts) {
  SqliteStatement& find = m_loader->findLatest;
  for (const FleetFact& fact : facts) {
    const std::int64_t host = hostOf(fact);
    const std::int64_t place = m_loader->ids.place(*fact.place);
    const std::string_view text = fact.value.value_or("");
    if (!find.bind(host).bind(place).step()) {
      const std::int64_t value = m_loader->ids.ownValue(text);
      m_loader->addLatest.bind(host).bind(place).bind(fact.since).bind(value).step();
      continue;
    }
    const Moment since = find.integer(0);
    const std::int64_t value = find.integer(1);
    find.reset();
    if (since < fact.since) {
      m_loader->ids.changeOwn(value, text);
      m_loader->renewLatest.bind(fact.since).bind(host).bind(place).step();
    }
  }
}

/// Facts come by host.
std::int64_t SqliteFleet::hostOf(const FleetFact& fact) {
  if (fact.host != m_host) {
    m_host = fact.host;
    m_hostId = m_loader->ids.host(fact.host);
  }
  return m_hostId;
}

FleetProblem SqliteFleet::write(const FleetBatch& batch) {
  m_host.clear();
  for (const FleetDocument& document : batch.documents) {
    addDocument(document);
  }
  addFacts(batch.facts);
  addLatest(batch.latest);
  m_connection.run("COMMIT");
  return m_connection.takeProblem();
}

FleetProblem SqliteFleet::moved(const FleetDocument& document) {
  m_loader->move.bind(document.file).bind(document.seen).bindBlob(bytesOf(document.hash)).step();
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
