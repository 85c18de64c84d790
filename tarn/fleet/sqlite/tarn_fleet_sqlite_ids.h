#pragma once
/// The numbers that hosts, places and values have in a file of SQLite's, and the way back to their hashes.
/// What was asked for lately is remembered, in memory that does not grow.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/fleet/sqlite/tarn_fleet_sqlite_connection.h"
#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

/// Remembers one record for each slot that a key can fall into.
template <class Record>
class SlotCache {
 public:
  explicit SlotCache(std::size_t slots) : m_slots(slots) {}

  /// Null when another key was there last, or none.
  const Record* find(std::uint64_t key) const {
    const Slot& slot = m_slots[key % m_slots.size()];
    return slot.isUsed && slot.key == key ? &slot.record : nullptr;
  }
  const Record& keep(std::uint64_t key, const Record& record) {
    Slot& slot = m_slots[key % m_slots.size()];
    slot = {key, record, true};
    return slot.record;
  }
  void clear() { m_slots.assign(m_slots.size(), {}); }

 private:
  struct Slot {
    std::uint64_t key = 0;
    Record record = {};
    bool isUsed = false;
  };
  std::vector<Slot> m_slots;
};

/// A value's text, number and key for natural order, to be bound to columns that stand in this order.
class ValueColumns {
 public:
  /// The text has to stay.
  explicit ValueColumns(std::string_view text);
  /// Stays until the statement has run.
  void bindTo(SqliteStatement& statement) const;

 private:
  std::string_view m_text;
  std::optional<std::string> m_sorted;
};

class SqliteIds {
 public:
  explicit SqliteIds(SqliteConnection& connection);

  /// The number of what has one; 0 when it has none.
  std::int64_t findHost(std::string_view name);
  /// The number of what has one, or gets it now.
  std::int64_t host(std::string_view name);
  std::int64_t place(const FleetPlace& place);
  std::int64_t value(std::string_view text);

  struct PlaceHashes {
    std::uint64_t text = 0, scope = 0;
  };
  PlaceHashes placeHashes(std::int64_t id);
  std::uint64_t valueHash(std::int64_t id);

  /// Forgets all: numbers that were given are taken back.
  void clear();

 private:
  std::int64_t insertPlace(std::uint64_t hash, const FleetPlace& place);
  std::int64_t insertValue(std::uint64_t hash, std::string_view text);

  SqliteStatement m_findHost, m_insertHost, m_findPlace, m_insertPlace, m_findValue, m_insertValue;
  SqliteStatement m_placeOf, m_valueOf;
  SlotCache<std::int64_t> m_places, m_values;  ///< by hash
  SlotCache<PlaceHashes> m_placeHashes;        ///< by number
  SlotCache<std::uint64_t> m_valueHashes;
};

}  // namespace tarn
