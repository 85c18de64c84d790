#pragma once
/// The database of a fleet: one interface, two engines (SQLite, ClickHouse), the same answers.
///
/// Every function gives a sentence when it could not do its work, and nothing when it did. Nothing is thrown.
/// After a problem the database is as it was, or as a loader leaves it that was killed: loading the same
/// documents again makes it whole.

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "tarn/fleet/tarn_fleet_question.h"
#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

using FleetProblem = std::optional<std::string>;

/// A host of a batch, and what the loader wants to know of it.
struct HostWanted {
  std::string name;
  Moment after = 0;  ///< of the documents only those behind it
};

/// What the database knows of a host. Texts stay where they are: their hashes tell what differs (`sipHash`,
/// see tarn/document/tarn_document_siphash.h; ClickHouse calls it sipHash64).
struct HostHistory {
  /// A document whose facts were taken.
  struct Taken {
    Moment moment = 0;
    std::vector<std::uint64_t> scopes;  ///< sipHash of each that it holds
  };
  std::vector<Taken> documents;  ///< behind the moment that was asked for, ascending
  struct Row {
    std::uint64_t place = 0;  ///< sipHash of FleetPlace::text
    std::uint64_t scope = 0;  ///< sipHash of FleetPlace::scope; 0 when that is empty
    Moment since = 0;
    std::uint64_t value = 0;  ///< sipHash of the value; 0 for none
    bool isVoid = false;
  };
  std::vector<Row> rows;  ///< all of facts that are not volatile; those of one place by since
};

/// One row of a history, whose texts are needed after all: a place that went away, or the value that holds
/// again behind a document that came late.
struct RowWanted {
  std::string_view host;
  std::uint64_t place = 0;
  Moment since = 0;
};
struct RowTexts {
  FleetPlace place;
  std::string value;  ///< empty when there is none
};

/// A document that the database has.
struct KnownDocument {
  std::size_t number = 0;  ///< among those that were asked for
  std::string file;        ///< as `FleetDocument::file`
};

/// A file that need not be read as long as another one is there, which has the same document.
struct FleetCopy {
  std::int64_t seen = 0;  ///< as `FleetDocument::seen`
  std::string other;      ///< that file
};

/// What goes into the database at once.
struct FleetBatch {
  std::vector<FleetDocument> documents;
  std::vector<FleetFact> facts;   ///< by host; adds, or replaces the row of that host, place and since
  std::vector<FleetFact> latest;  ///< of volatile places; replaces an older one
};

class FleetDatabase {
 public:
  virtual ~FleetDatabase() = default;

  /// Makes what is not there yet. A database of another form, or none of ours, is a problem.
  virtual FleetProblem create() = 0;

  /// Waits until nobody else loads, then keeps others from it until `unlock`. `waiting` is called each second
  /// and ends the waiting with false.
  virtual FleetProblem lock(const std::function<bool()>& waiting) = 0;
  virtual FleetProblem unlock() = 0;

  /// `FleetDocument::seen` of all documents.
  virtual FleetProblem seenFiles(std::unordered_set<std::int64_t>* seen) = 0;
  /// All that `copied` was told.
  virtual FleetProblem copies(std::vector<FleetCopy>* copies) = 0;
  /// Which of these documents are in the database.
  virtual FleetProblem known(std::span<const DocumentHash> hashes, std::vector<KnownDocument>* known) = 0;
  /// What is known of each of these hosts, in their order; of one that is not known nothing.
  virtual FleetProblem read(std::span<const HostWanted> hosts, std::vector<HostHistory>* histories) = 0;
  /// The texts of rows that `read` gave, in their order. Few of them are asked for.
  virtual FleetProblem texts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) = 0;
  /// Writes a batch: all of it, or after a problem a part that a second time does not harm.
  virtual FleetProblem write(const FleetBatch& batch) = 0;
  /// A document that is known stands in another file now.
  virtual FleetProblem moved(const FleetDocument& document) = 0;
  /// A document stands in a further file; replaces what was told of that file.
  virtual FleetProblem copied(const FleetCopy& copy) = 0;

  /// Asks, and hands out the rows in the order that the question says. A null is a text without `data()`.
  /// `take` ends the answer with false.
  using TakeRow = std::function<bool(std::span<const std::string_view> row)>;
  virtual FleetProblem ask(const FleetQuestion& question, const TakeRow& take) = 0;
  /// The statement that `ask` sends, with its values in it, for people with tools of their own.
  virtual std::string sql(const FleetQuestion& question) const = 0;
};

/// `clickhouse://HOST[:PORT]/DATABASE`, else a file for SQLite. User and password come from the environment
/// (TARN_FLEET_USER, TARN_FLEET_PASSWORD), never from the name. With `mustExist` a missing database is a
/// problem.
struct OpenedDatabase {
  std::unique_ptr<FleetDatabase> database;  ///< null when there is a problem
  FleetProblem problem;
};
OpenedDatabase openFleet(const std::string& name, bool mustExist);

}  // namespace tarn
