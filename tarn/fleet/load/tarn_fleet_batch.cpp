#include "tarn/fleet/load/tarn_fleet_batch.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <unordered_map>

#include "tarn/fleet/load/tarn_fleet_timeline.h"

namespace tarn {

namespace {

class BatchWriter {
 public:
  BatchWriter(std::vector<ReadDocument>& documents, FleetDatabase& database, LoadCounts* counts)
      : m_documents(documents), m_database(database), m_counts(counts) {}

  FleetProblem run() {
    FleetProblem problem = leaveOutKnown();
    sortByHost();
    problem = problem ? problem : makeRows();
    problem = problem ? problem : findTexts();
    return problem ? problem : write();
  }

 private:
  using Documents = std::vector<ReadDocument*>;

  /// A document that is known, or that this batch has twice, is in another file now, or in one more.
  FleetProblem leaveOutKnown() {
    std::vector<DocumentHash> hashes;
    for (const ReadDocument& document : m_documents) {
      hashes.push_back(document.about.hash);
    }
    std::vector<KnownDocument> known;
    FleetProblem problem = m_database.known(hashes, &known);
    std::map<DocumentHash, std::string> files;
    for (const KnownDocument& document : known) {
      files[hashes[document.number]] = document.file;
    }
    for (ReadDocument& document : m_documents) {
      const auto [file, isNew] = files.try_emplace(document.about.hash, document.about.file);
      if (isNew) {
        m_new.push_back(&document);
      } else if (!problem) {
        problem = takeFile(document.about, &file->second);
      }
    }
    return problem;
  }

  /// `file` is where the document was found before.
  FleetProblem takeFile(const FleetDocument& document, std::string* file) {
    ++m_counts->known;
    if (*file != document.file && isThere(*file)) {
      return m_database.copied({document.seen, *file});
    }
    *file = document.file;
    return m_database.moved(document);
  }

  /// Those with facts come by host, then by moment.
  void sortByHost() {
    for (ReadDocument* const document : m_new) {
      if (document->about.problem.empty()) {
        m_taken.push_back(document);
      }
    }
    std::sort(m_taken.begin(), m_taken.end(), [](const ReadDocument* one, const ReadDocument* other) {
      const int order = one->about.host.compare(other->about.host);
      return order != 0 ? order < 0 : one->about.moment < other->about.moment;
    });
    for (auto first = m_taken.begin(); first != m_taken.end(); first = endOfHost(first)) {
      m_hosts.push_back({(*first)->about.host, (*first)->about.moment - 1});
    }
  }

  Documents::iterator endOfHost(Documents::iterator first) {
    return std::find_if(first, m_taken.end(), [first](const ReadDocument* document) {
      return document->about.host != (*first)->about.host;
    });
  }

  /// Histories come and go in groups, which bounds the memory that they take.
  FleetProblem makeRows() {
    constexpr std::size_t kHostsAtOnce = 256;
    auto first = m_taken.begin();
    for (std::size_t at = 0; at < m_hosts.size(); at += kHostsAtOnce) {
      const std::span<const HostWanted> wanted =
          std::span(m_hosts).subspan(at, std::min(kHostsAtOnce, m_hosts.size() - at));
      std::vector<HostHistory> histories;
      if (FleetProblem problem = m_database.read(wanted, &histories)) {
        return problem;
      }
      for (const HostHistory& history : histories) {
        const auto end = endOfHost(first);
        addHost(history, first, end);
        first = end;
      }
    }
    return std::nullopt;
  }

  void addHost(const HostHistory& history, Documents::iterator first, Documents::iterator end) {
    m_timeline.begin(history);
    std::unordered_map<std::uint64_t, FleetFact> latest;
    for (auto document = first; document != end; ++document) {
      FleetDocument& about = (*document)->about;
      if (!m_timeline.take((*document)->flat, about.moment)) {
        about.problem = "same moment";
        continue;
      }
      for (const FlatFact& fact : (*document)->flat.latest) {
        latest[fact.place->hash] = {about.host, &fact.place->place, about.moment,
                                    (*document)->flat.valueOf(fact)};
      }
    }
    for (const auto& [place, fact] : latest) {
      m_batch.latest.push_back(fact);
    }
    addPuts((*first)->about.host);
  }

  void addPuts(std::string_view host) {
    for (const HostTimeline::Put& put : m_timeline.puts()) {
      if (put.needsTexts()) {
        m_wanted.push_back({host, put.place, put.told});
        m_incomplete.push_back(m_batch.facts.size());
      }
      m_batch.facts.push_back({host, put.known == nullptr ? nullptr : &put.known->place, put.since,
                               put.isThere ? std::optional(put.value) : std::nullopt, put.isVoid,
                               put.isNewest});
    }
  }

  FleetProblem findTexts() {
    if (m_wanted.empty()) {
      return std::nullopt;
    }
    FleetProblem problem = m_database.texts(m_wanted, &m_texts);
    for (std::size_t at = 0; at < m_texts.size(); ++at) {
      FleetFact& fact = m_batch.facts[m_incomplete[at]];
      fact.place = fact.place == nullptr ? &m_texts[at].place : fact.place;
      fact.value = fact.value ? std::optional<std::string_view>(m_texts[at].value) : std::nullopt;
    }
    return problem;
  }

  FleetProblem write() {
    for (ReadDocument* const document : m_new) {
      ++m_counts->documents;
      m_counts->problems += document->about.problem.empty() ? 0 : 1;
      m_counts->bytes += document->about.bytes;
      m_batch.documents.push_back(document->about);
    }
    return m_database.write(m_batch);
  }

  std::vector<ReadDocument>& m_documents;
  FleetDatabase& m_database;
  LoadCounts* m_counts;
  Documents m_new, m_taken;
  std::vector<HostWanted> m_hosts;
  HostTimeline m_timeline;
  FleetBatch m_batch;
  std::vector<RowWanted> m_wanted;
  std::vector<std::size_t> m_incomplete;  ///< facts, one for each row that is wanted
  std::vector<RowTexts> m_texts;
};

}  // namespace

FleetProblem writeBatch(std::vector<ReadDocument>& documents, FleetDatabase& database, LoadCounts* counts) {
  return BatchWriter(documents, database, counts).run();
}

}  // namespace tarn
