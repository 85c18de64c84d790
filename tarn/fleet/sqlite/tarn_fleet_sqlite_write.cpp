#include "tarn/fleet/sqlite/tarn_fleet_sqlite_write.h"

#include <algorithm>
#include <tuple>

#include "tarn/document/tarn_document_siphash.h"

namespace tarn {

namespace {

constexpr const char* kFindFile =
    "SELECT text || file FROM document JOIN value ON value.id = folder "
    "WHERE substr(document.hash, 1, 8) = substr(?1, 1, 8) AND document.hash = ?1";
constexpr const char* kAddFact =
    "INSERT INTO fact (host, since, place, value, void) VALUES (?, ?, ?, ?, ?) "
    "ON CONFLICT (host, since, place) DO UPDATE SET value = excluded.value, void = excluded.void";
constexpr const char* kSetPresent =
    "INSERT INTO present (place, host, value) VALUES (?, ?, ?) "
    "ON CONFLICT (place, host) DO UPDATE SET value = excluded.value";
constexpr const char* kSetLatest =
    "INSERT INTO latest (host, place, since, text, number, sorted) VALUES (?, ?, ?, ?, ?, ?) "
    "ON CONFLICT (host, place) DO UPDATE SET since = excluded.since, text = excluded.text, "
    "number = excluded.number, sorted = excluded.sorted WHERE since < excluded.since";
constexpr const char* kAddDocument =
    "INSERT INTO document (hash, host, moment, folder, file, bytes, seen, state, problem, line, \"column\", "
    "host_from, time_from, engine, version, database, answered, asked, scopes) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr const char* kMove =
    "UPDATE document SET folder = ?, file = ?, seen = ? WHERE substr(hash, 1, 8) = substr(?4, 1, 8) AND hash "
    "= ?4";

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

/// A path's folder, with the slash, and what is behind it.
std::string_view folderOf(std::string_view path) {
  return path.substr(0, path.rfind('/') + 1);
}
std::string_view nameOf(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

/// What told a host or a time, where it was not the document itself.
std::optional<std::string_view> origin(std::string_view from) {
  return from == "document" ? std::nullopt : std::optional(from);
}

std::int64_t signedOf(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

}  // namespace

SqliteWriter::SqliteWriter(SqliteConnection& connection, SqliteIds& ids)
    : m_ids(ids),
      m_findFile(connection, kFindFile),
      m_addFact(connection, kAddFact),
      m_setPresent(connection, kSetPresent),
      m_removePresent(connection, "DELETE FROM present WHERE place = ? AND host = ?"),
      m_setLatest(connection, kSetLatest),
      m_addDocument(connection, kAddDocument),
      m_move(connection, kMove),
      m_addCopy(connection, "INSERT OR REPLACE INTO copy (seen, other) VALUES (?, ?)") {}

std::optional<std::string> SqliteWriter::fileOf(const DocumentHash& hash) {
  std::optional<std::string> file;
  if (m_findFile.bindBlob(bytesOf(hash)).step()) {
    file = m_findFile.text(0);
    m_findFile.reset();
  }
  return file;
}

void SqliteWriter::write(const FleetBatch& batch) {
  m_host.clear();
  for (const FleetDocument& document : batch.documents) {
    addDocument(document);
  }
  addFacts(batch.facts);
  setLatest(batch.latest);
}

void SqliteWriter::move(const FleetDocument& document) {
  m_move.bind(m_ids.value(folderOf(document.file))).bind(nameOf(document.file));
  m_move.bind(document.seen).bindBlob(bytesOf(document.hash)).step();
}

void SqliteWriter::addCopy(const FleetCopy& copy) {
  m_addCopy.bind(copy.seen).bind(copy.other).step();
}

void SqliteWriter::addDocument(const FleetDocument& document) {
  const std::string scopes = packed(document.scopes);
  SqliteStatement& add = m_addDocument;
  add.bindBlob(bytesOf(document.hash));
  document.host.empty() ? add.bindNull() : add.bind(m_ids.host(document.host));
  add.bind(document.moment).bind(m_ids.value(folderOf(document.file))).bind(nameOf(document.file));
  add.bind(signedOf(document.bytes)).bind(document.seen);
  add.bind(document.state).bind(document.problem);
  add.bind(signedOf(document.line)).bind(signedOf(document.column));
  add.bind(origin(document.hostFrom)).bind(origin(document.timeFrom));
  for (const std::string* const text : {&document.engine, &document.version, &document.database}) {
    add.bind(m_ids.value(*text));
  }
  add.bind(signedOf(document.answered)).bind(signedOf(document.asked)).bindBlob(scopes).step();
}

/// Pages fill best when rows come in the order of their keys.
std::vector<SqliteWriter::Row> SqliteWriter::inOrder(const std::vector<FleetFact>& facts) {
  std::vector<Row> rows;
  rows.reserve(facts.size());
  for (const FleetFact& fact : facts) {
    rows.push_back({hostOf(fact), m_ids.place(*fact.place), &fact});
  }
  std::sort(rows.begin(), rows.end(), [](const Row& one, const Row& other) {
    return std::tie(one.host, one.fact->since, one.place) <
           std::tie(other.host, other.fact->since, other.place);
  });
  return rows;
}

void SqliteWriter::addFacts(const std::vector<FleetFact>& facts) {
  SqliteStatement& add = m_addFact;
  for (const auto& [host, place, fact] : inOrder(facts)) {
    const std::int64_t value = fact->value ? m_ids.value(*fact->value) : 0;
    add.bind(host).bind(fact->since).bind(place);
    value != 0 ? add.bind(value) : add.bindNull();
    add.bind(std::int64_t{fact->isVoid}).step();
    if (fact->isNewest) {
      setPresent(host, place, value);
    }
  }
}

void SqliteWriter::setPresent(std::int64_t host, std::int64_t place, std::int64_t value) {
  if (value != 0) {
    m_setPresent.bind(place).bind(host).bind(value).step();
  } else {
    m_removePresent.bind(place).bind(host).step();
  }
}

void SqliteWriter::setLatest(const std::vector<FleetFact>& facts) {
  SqliteStatement& set = m_setLatest;
  for (const auto& [host, place, fact] : inOrder(facts)) {
    const ValueColumns columns(fact->value.value_or(""));
    set.bind(host).bind(place).bind(fact->since);
    columns.bindTo(set);
    set.step();
  }
}

/// Facts come by host.
std::int64_t SqliteWriter::hostOf(const FleetFact& fact) {
  if (fact.host != m_host) {
    m_host = fact.host;
    m_hostId = m_ids.host(fact.host);
  }
  return m_hostId;
}

}  // namespace tarn
