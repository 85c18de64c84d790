#include "tarn/fleet/sqlite/tarn_fleet_sqlite_ids.h"

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/tarn_fleet_order.h"

namespace tarn {

namespace {

constexpr std::size_t kPlaces = 1 << 18, kValues = 1 << 20;
constexpr std::size_t kKeyedAtMost = 256;  // bytes; what is longer is no version and no number

std::int64_t idFrom(SqliteStatement& statement) {
  if (!statement.step()) {
    return 0;
  }
  const std::int64_t id = statement.integer(0);
  statement.reset();
  return id;
}

/// Of the row with that hash and that text; 0 when there is none.
std::int64_t idOf(SqliteStatement& statement, std::uint64_t hash, std::string_view text) {
  std::int64_t found = 0;
  for (statement.bind(static_cast<std::int64_t>(hash)); found == 0 && statement.step();) {
    found = statement.text(1) == text ? statement.integer(0) : 0;
  }
  statement.reset();
  return found;
}

/// What natural order compares; nothing where that is the text.
std::optional<std::string> keyOf(std::string_view text) {
  std::string key = text.size() > kKeyedAtMost ? "" : naturalKey(text);
  return key.empty() || key == text ? std::nullopt : std::optional(std::move(key));
}

}  // namespace

ValueColumns::ValueColumns(std::string_view text) : m_text(text), m_sorted(keyOf(text)) {}

void ValueColumns::bindTo(SqliteStatement& statement) const {
  statement.bind(m_text).bind(numericValue(m_text));
  m_sorted ? statement.bind(std::string_view(*m_sorted)) : statement.bindNull();
}

SqliteIds::SqliteIds(SqliteConnection& connection)
    : m_findHost(connection, "SELECT id FROM host WHERE name = ?"),
      m_insertHost(connection, "INSERT INTO host (name) VALUES (?) RETURNING id"),
      m_findPlace(connection, "SELECT id, text FROM place WHERE hash = ?"),
      m_insertPlace(connection,
                    "INSERT INTO place (hash, text, pointer, scope) VALUES (?, ?, ?, ?) RETURNING id"),
      m_findValue(connection, "SELECT id, text FROM value WHERE hash = ?"),
      m_insertValue(connection,
                    "INSERT INTO value (hash, text, number, sorted) VALUES (?, ?, ?, ?) RETURNING id"),
      m_placeOf(connection, "SELECT hash, scope FROM place WHERE id = ?"),
      m_valueOf(connection, "SELECT hash FROM value WHERE id = ?"),
      m_places(kPlaces),
      m_values(kValues),
      m_placeHashes(kPlaces),
      m_valueHashes(kValues) {}

std::int64_t SqliteIds::findHost(std::string_view name) {
  return idFrom(m_findHost.bind(name));
}

std::int64_t SqliteIds::host(std::string_view name) {
  const std::int64_t known = findHost(name);
  return known != 0 ? known : idFrom(m_insertHost.bind(name));
}

std::int64_t SqliteIds::insertPlace(std::uint64_t hash, const FleetPlace& place) {
  m_insertPlace.bind(static_cast<std::int64_t>(hash)).bind(place.text).bind(place.pointer).bind(place.scope);
  return idFrom(m_insertPlace);
}

std::int64_t SqliteIds::place(const FleetPlace& place) {
  const std::uint64_t hash = sipHash(place.text);
  if (const std::int64_t* const kept = m_places.find(hash)) {
    return *kept;
  }
  const std::int64_t known = idOf(m_findPlace, hash, place.text);
  return m_places.keep(hash, known != 0 ? known : insertPlace(hash, place));
}

std::int64_t SqliteIds::insertValue(std::uint64_t hash, std::string_view text) {
  const ValueColumns columns(text);
  columns.bindTo(m_insertValue.bind(static_cast<std::int64_t>(hash)));
  return idFrom(m_insertValue);
}

std::int64_t SqliteIds::value(std::string_view text) {
  const std::uint64_t hash = sipHash(text);
  if (const std::int64_t* const kept = m_values.find(hash)) {
    return *kept;
  }
  const std::int64_t known = idOf(m_findValue, hash, text);
  return m_values.keep(hash, known != 0 ? known : insertValue(hash, text));
}

SqliteIds::PlaceHashes SqliteIds::placeHashes(std::int64_t id) {
  const auto key = static_cast<std::uint64_t>(id);
  if (const PlaceHashes* const kept = m_placeHashes.find(key)) {
    return *kept;
  }
  PlaceHashes hashes;
  if (m_placeOf.bind(id).step()) {
    const std::string_view scope = m_placeOf.text(1);
    hashes = {static_cast<std::uint64_t>(m_placeOf.integer(0)), scope.empty() ? 0 : sipHash(scope)};
    m_placeOf.reset();
  }
  return m_placeHashes.keep(key, hashes);
}

std::uint64_t SqliteIds::valueHash(std::int64_t id) {
  const auto key = static_cast<std::uint64_t>(id);
  if (const std::uint64_t* const kept = m_valueHashes.find(key)) {
    return *kept;
  }
  return m_valueHashes.keep(key, static_cast<std::uint64_t>(idFrom(m_valueOf.bind(id))));
}

void SqliteIds::clear() {
  m_places.clear();
  m_values.clear();
  m_placeHashes.clear();
  m_valueHashes.clear();
}

}  // namespace tarn
