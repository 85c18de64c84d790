#pragma once
/// The places that the documents of a load have in common, each put together once.
///
/// Places form a tree as documents do: a way down a document costs a look-up for each member, however long
/// the text of a place is. A member's name, or that of a row, of more than 256 bytes is shortened, and so is
/// the text of a place of more than 1,024; what tells it from others is a hash at its end, then.

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/facts/tarn_facts_table.h"
#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

struct KnownPlace {
  FleetPlace place;
  std::uint64_t hash = 0;   ///< sipHash of the text
  std::uint64_t scope = 0;  ///< sipHash of the scope; 0 when that is empty
  Facts::Step step;         ///< what the table knows here
  bool isVolatile = false;  ///< this, or what is above it, changes by itself

  // Of the document that is being read:
  std::uint64_t document = 0;  ///< the last one that has it
  std::uint32_t rows = 0;      ///< how many of its rows had this name

  // The way here.
  const KnownPlace* above = nullptr;
  std::string token;
};

class FleetPlaces {
 public:
  /// The facts are not copied.
  explicit FleetPlaces(const Facts& facts);
  FleetPlaces(const FleetPlaces&) = delete;
  FleetPlaces& operator=(const FleetPlaces&) = delete;

  KnownPlace& root() { return m_places.front(); }
  /// The member NAME, or NAME#2 for the second of that name. Nothing that was given ever moves.
  KnownPlace& member(const KnownPlace& above, std::string_view name, std::uint32_t number);
  /// The element of that number, for elements without names.
  KnownPlace& element(const KnownPlace& above, std::uint32_t number);
  /// The row of that name, `BPNAME=main`. `isScope`: it is a part of the document itself.
  KnownPlace& row(const KnownPlace& above, std::string_view name, bool isScope);

  /// About how much memory they take.
  std::size_t bytes() const { return m_bytes; }

 private:
  enum class Way { member, element, scope };

  KnownPlace& find(const KnownPlace& above, std::string_view token, Way way);
  KnownPlace& add(const KnownPlace& above, std::string_view token, Way way);
  void grow();

  std::deque<KnownPlace> m_places;
  std::vector<std::uint32_t> m_slots;  ///< 1 + index of a place, at its digest or behind; 0: free
  std::vector<std::uint64_t> m_digests;
  std::size_t m_bytes = 0;
};

/// Appends a name or a value as it stands within brackets: `~0`, `~1`, `~2`, `~3` and `~4` for "~", "/", "]",
/// "=" and ",".
void appendRowWord(std::string_view word, std::string& name);

/// Appends a text as the database keeps it: U+FFFD for NUL bytes and for bytes that are no UTF-8.
void appendClean(std::string_view text, std::string& out);

}  // namespace tarn
