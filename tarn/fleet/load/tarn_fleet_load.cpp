#include "tarn/fleet/load/tarn_fleet_load.h"

#include <ctime>
#include <future>
#include <memory>
#include <unordered_set>

#include "tarn/fleet/load/tarn_fleet_batch.h"
#include "tarn/fleet/load/tarn_fleet_read.h"

namespace tarn {

namespace {

// A batch ends with the first of these.
constexpr std::size_t kDocuments = 1000, kFacts = 1'000'000, kBytes = 64 << 20;
constexpr std::size_t kPlaceBytes = 64 << 20;  // places are put together anew then

/// Documents as they were read, and what else there is to say of their files.
struct LoadBatch {
  std::vector<ReadDocument> documents;
  std::vector<StoreTrouble> troubles;
  std::shared_ptr<FleetPlaces> places;  ///< those of the documents
  std::uint64_t unchanged = 0;
  bool isLast = false;
};

/// Reads the store, a batch a call.
class BatchReader {
 public:
  BatchReader(const std::vector<std::string>& stores, const ReadContext& context,
              const std::unordered_set<std::int64_t>& seen, const std::function<bool()>& stopped)
      : m_walk(stores), m_context(context), m_seen(seen), m_stopped(stopped) {}

  LoadBatch next() {
    if (!m_places || m_places->bytes() > kPlaceBytes) {
      m_places = std::make_shared<FleetPlaces>(m_context.facts);
    }
    LoadBatch batch = {.documents = {}, .troubles = {}, .places = m_places};
    std::size_t facts = 0;
    std::size_t bytes = 0;
    while (batch.documents.size() < kDocuments && facts < kFacts && bytes < kBytes && !m_stopped()) {
      const std::optional<StoreFile> file = m_walk.next();
      if (!file) {
        batch.isLast = true;
        break;
      }
      if (m_seen.contains(file->seen)) {
        ++batch.unchanged;
      } else {
        read(*file, batch, &facts, &bytes);
      }
    }
    for (StoreTrouble& trouble : m_walk.takeTroubles()) {
      batch.troubles.push_back(std::move(trouble));
    }
    return batch;
  }

 private:
  void read(const StoreFile& file, LoadBatch& batch, std::size_t* facts, std::size_t* bytes) {
    StoreBytes content = readStoreFile(file);
    if (content.problem) {
      batch.troubles.push_back({file.path, *content.problem});
      return;
    }
    ReadDocument& document =
        batch.documents.emplace_back(readDocument(file, std::move(content), m_context, *m_places));
    *facts += document.flat.facts.size() + document.flat.latest.size();
    *bytes += document.flat.texts.size();
  }

  StoreWalk m_walk;
  const ReadContext& m_context;
  const std::unordered_set<std::int64_t>& m_seen;
  const std::function<bool()>& m_stopped;
  std::shared_ptr<FleetPlaces> m_places;
};

/// A copy is read again once the file is gone that the database has for its document.
FleetProblem findSeen(FleetDatabase& database, std::unordered_set<std::int64_t>* seen) {
  std::vector<FleetCopy> copies;
  FleetProblem problem = database.seenFiles(seen);
  problem = problem ? problem : database.copies(&copies);
  for (const FleetCopy& copy : copies) {
    if (isThere(copy.other)) {
      seen->insert(copy.seen);
    }
  }
  return problem;
}

FleetProblem writeLocked(LoadBatch& batch, const LoadWatch& watch, FleetDatabase& database,
                         LoadCounts* counts) {
  const auto waiting = [&watch] {
    watch.waiting();
    return !watch.stopped();
  };
  const LoadCounts before = *counts;
  FleetProblem problem = database.lock(waiting);
  if (!problem) {
    problem = writeBatch(batch.documents, database, counts);
    const FleetProblem left = database.unlock();
    problem = problem ? problem : left;
  }
  if (problem) {
    *counts = before;
  }
  return problem;
}

}  // namespace

FleetProblem loadStores(const std::vector<std::string>& stores, const Facts& facts, const ExchangeLog& log,
                        const LoadWatch& watch, FleetDatabase& database, LoadCounts* counts) {
  std::unordered_set<std::int64_t> seen;
  FleetProblem problem = findSeen(database, &seen);
  const ReadContext context = {facts, log, time(nullptr)};
  BatchReader reader(stores, context, seen, watch.stopped);
  const auto readNext = [&reader] { return reader.next(); };
  std::future<LoadBatch> reading;
  for (bool isLast = problem.has_value(); !isLast && !problem;) {
    LoadBatch batch = reading.valid() ? reading.get() : readNext();
    isLast = batch.isLast || watch.stopped();
    if (!isLast) {
      reading = std::async(std::launch::async, readNext);
    }
    for (const StoreTrouble& trouble : batch.troubles) {
      watch.trouble(trouble);
    }
    counts->unchanged += batch.unchanged;
    if (!batch.documents.empty() && !watch.stopped()) {
      problem = writeLocked(batch, watch, database, counts);
    }
    watch.progress(*counts);
  }
  return problem;
}

}  // namespace tarn
