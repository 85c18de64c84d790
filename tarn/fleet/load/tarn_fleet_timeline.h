#pragma once
/// Which rows a host's documents make, whatever the order in which they come: the pure step of the loader.
///
///     timeline.begin(history);
///     for (each document) timeline.take(document, moment);
///     for (const HostTimeline::Put& put : timeline.puts()) ...
///
/// A row stands where a document differs from the one before it. A late document brings a row of its own and,
/// at the next document, one that says what that had shown all along; a row there that turns out to change
/// nothing becomes void. Documents that do not hold a scope are not among those that speak about it.

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/fleet/load/tarn_fleet_flatten.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

class HostTimeline {
 public:
  /// A row to write. Texts that only the database has are named by the row that tells them.
  struct Put {
    std::uint64_t place = 0;
    const KnownPlace* known = nullptr;  ///< null: the database has it, in the row of `told`
    Moment since = 0;
    bool isThere = false;    ///< there is a value
    std::string_view value;  ///< of a document that was taken
    Moment told = 0;         ///< 0, or the moment of the row of this place that has the texts
    bool isVoid = false;
    bool isNewest = false;  ///< of its place
    bool needsTexts() const { return told != 0 && (isThere || known == nullptr); }
  };

  /// The history has the documents behind the first one that will be taken.
  void begin(const HostHistory& history);
  /// False when the host has another document of that moment: nothing is taken. The document has to stay.
  bool take(const FlatDocument& document, Moment moment);
  /// What has to be written; each row once.
  std::vector<Put> puts();

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  struct Row {
    Moment since = 0;
    std::uint64_t value = 0;  ///< hash, 0 for none
    std::string_view text;    ///< where `told` is 0
    Moment told = 0;          ///< of the stored row that has the value's text
    std::uint32_t place = 0;  ///< index
    std::uint32_t before = kNone;
    bool isVoid = false, isPut = false;
  };
  struct Place {
    std::uint64_t hash = 0, scope = 0;
    const KnownPlace* known = nullptr;
    std::uint32_t newest = kNone;  ///< row
    std::uint32_t taken = 0;       ///< the last document that showed it
  };
  struct Document {
    Moment moment = 0;
    std::vector<std::uint64_t> scopes;
  };
  /// What a row says from its moment on.
  struct Said {
    std::uint64_t value = 0;
    std::string_view text = {};
    Moment told = 0;
  };

  std::uint32_t placeOf(std::uint64_t hash, std::uint64_t scope);
  void grow();
  bool addDocument(const FlatDocument& document, Moment moment);
  void meet(std::uint32_t place, Moment moment, const Said& said);
  std::uint32_t addRow(std::uint32_t place, Moment since, const Said& said);
  void insert(std::uint32_t row, std::uint32_t after);
  void correctVoid();
  /// The moment of a row of that place that the database has.
  Moment storedRow(const Place& place) const;
  /// The next document behind the one that is being taken that holds the scope; 0 for none, nothing when
  /// that one does not hold it.
  std::optional<Moment> nextWith(std::uint64_t scope) const;

  std::vector<Row> m_rows;
  std::vector<Place> m_places;
  std::vector<std::uint32_t> m_slots;                    ///< 1 + index of a place; 0: free
  std::vector<Document> m_documents;                     ///< ascending
  std::vector<std::pair<std::uint64_t, Moment>> m_next;  ///< by scope
  std::uint32_t m_taken = 0;
};

}  // namespace tarn
