// What a loader asks of ClickHouse.

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/clickhouse/tarn_fleet_clickhouse.h"
#include "tarn/fleet/clickhouse/tarn_fleet_literal.h"
#include "tarn/fleet/clickhouse/tarn_fleet_rowbinary.h"
#include "tarn/fleet/clickhouse/tarn_fleet_statement.h"

namespace tarn {

namespace {

std::string hostsOf(std::span<const HostWanted> hosts) {
  return listOf(hosts, [](const HostWanted& host) { return clickhouseLiteral(host.name); });
}

/// A server's own limit of what a statement may hold is 50,000 expressions.
constexpr std::size_t kMostTexts = 10'000;

/// One number for a row, as texts.sql computes it.
std::uint64_t keyOf(const RowWanted& row) {
  return sipHash(row.host) ^ row.place ^ static_cast<std::uint64_t>(row.since);
}

using Numbers = std::unordered_map<std::uint64_t, std::size_t>;

/// By the hash of its name, which place a host has.
Numbers numbersOf(std::span<const HostWanted> hosts) {
  Numbers numbers;
  for (std::size_t at = 0; at < hosts.size(); ++at) {
    numbers.emplace(sipHash(hosts[at].name), at);
  }
  return numbers;
}

/// A row, and how often it was written before.
struct VersionedRow {
  HostHistory::Row row;
  std::uint64_t version = 0;
};

/// Of rows that were written more than once, and of which the server has not dropped the older ones yet, the
/// last.
std::vector<HostHistory::Row> newestVersions(std::vector<VersionedRow> all) {
  std::ranges::sort(all, [](const VersionedRow& one, const VersionedRow& other) {
    return std::tie(one.row.place, one.row.since, other.version) <
           std::tie(other.row.place, other.row.since, one.version);
  });
  std::vector<HostHistory::Row> rows;
  for (const VersionedRow& each : all) {
    if (rows.empty() || rows.back().place != each.row.place || rows.back().since != each.row.since) {
      rows.push_back(each.row);
    }
  }
  return rows;
}

void sortDocuments(std::vector<HostHistory::Taken>& documents) {
  std::ranges::sort(documents, {}, &HostHistory::Taken::moment);
  const auto again = std::unique(documents.begin(), documents.end(), [](const auto& one, const auto& other) {
    return one.moment == other.moment;
  });
  documents.erase(again, documents.end());
}

}  // namespace

FleetProblem ClickhouseDatabase::seenFiles(std::unordered_set<std::int64_t>* seen) {
  std::string answer;
  const HttpOutcome problem = answerOf(&m_http, clickhouseStatement("seen_files"), &answer);
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    seen->insert(reader.number<std::int64_t>());
  }
  return told(problem);
}

FleetProblem ClickhouseDatabase::copies(std::vector<FleetCopy>* copies) {
  std::string answer;
  const HttpOutcome problem = answerOf(&m_http, clickhouseStatement("copies"), &answer);
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    const auto seen = reader.number<std::int64_t>();
    copies->push_back({seen, std::string(reader.text())});
  }
  return told(problem);
}

FleetProblem ClickhouseDatabase::known(std::span<const DocumentHash> hashes,
                                       std::vector<KnownDocument>* known) {
  known->clear();
  if (hashes.empty()) {
    return std::nullopt;
  }
  const std::string list =
      listOf(hashes, [](const DocumentHash& hash) { return clickhouseLiteral(bytesOf(hash)); });
  std::string answer;
  const HttpOutcome problem = answerOf(&m_http, clickhouseStatement("known", {{"hashes", list}}), &answer);
  std::unordered_map<std::string_view, std::string_view> files;
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    const std::string_view hash = reader.fixed(DocumentHash().size());
    files[hash] = reader.text();
  }
  for (std::size_t at = 0; at < hashes.size(); ++at) {
    if (const auto found = files.find(bytesOf(hashes[at])); found != files.end()) {
      known->push_back({at, std::string(found->second)});
    }
  }
  return told(problem);
}

FleetProblem ClickhouseDatabase::read(std::span<const HostWanted> hosts,
                                      std::vector<HostHistory>* histories) {
  histories->assign(hosts.size(), {});
  if (hosts.empty()) {
    return std::nullopt;
  }
  const std::string names = hostsOf(hosts);
  FleetProblem problem = readDocuments(names, hosts, histories);
  return problem ? problem : readRows(names, hosts, histories);
}

FleetProblem ClickhouseDatabase::readDocuments(const std::string& hosts, std::span<const HostWanted> wanted,
                                               std::vector<HostHistory>* histories) {
  const Moment after = std::ranges::min(wanted, {}, &HostWanted::after).after;
  const SqlParts parts = {{"hosts", hosts}, {"after", std::to_string(after)}};
  std::string answer;
  if (HttpOutcome problem = answerOf(&m_http, clickhouseStatement("read_documents", parts), &answer)) {
    return told(problem);
  }
  const Numbers numbers = numbersOf(wanted);
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    const std::size_t host = numbers.at(reader.number<std::uint64_t>());
    HostHistory::Taken taken = {reader.number<Moment>(), {}};
    for (std::uint64_t scopes = reader.count(); scopes > 0 && !reader.ended(); --scopes) {
      taken.scopes.push_back(reader.number<std::uint64_t>());
    }
    if (taken.moment > wanted[host].after) {
      (*histories)[host].documents.push_back(std::move(taken));
    }
  }
  for (HostHistory& history : *histories) {
    sortDocuments(history.documents);
  }
  return std::nullopt;
}

FleetProblem ClickhouseDatabase::readRows(const std::string& hosts, std::span<const HostWanted> wanted,
                                          std::vector<HostHistory>* histories) {
  std::string answer;
  if (HttpOutcome problem =
          answerOf(&m_http, clickhouseStatement("read_rows", {{"hosts", hosts}}), &answer)) {
    return told(problem);
  }
  const Numbers numbers = numbersOf(wanted);
  std::vector<std::vector<VersionedRow>> rows(wanted.size());
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    VersionedRow& read = rows[numbers.at(reader.number<std::uint64_t>())].emplace_back();
    read.row.place = reader.number<std::uint64_t>();
    read.row.scope = reader.number<std::uint64_t>();
    read.row.since = reader.number<Moment>();
    read.row.value = reader.number<std::uint64_t>();
    read.row.isVoid = reader.number<unsigned char>() != 0;
    read.version = reader.number<std::uint64_t>();
  }
  for (std::size_t host = 0; host < wanted.size(); ++host) {
    (*histories)[host].rows = newestVersions(std::move(rows[host]));
  }
  return std::nullopt;
}

FleetProblem ClickhouseDatabase::texts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) {
  texts->clear();
  FleetProblem problem;
  while (!rows.empty() && !problem) {
    const std::size_t count = std::min(rows.size(), kMostTexts);
    problem = readTexts(rows.first(count), texts);
    rows = rows.subspan(count);
  }
  return problem;
}

FleetProblem ClickhouseDatabase::readTexts(std::span<const RowWanted> rows, std::vector<RowTexts>* texts) {
  const std::size_t begin = texts->size();
  texts->resize(begin + rows.size());
  std::unordered_set<std::string_view> hosts;
  std::unordered_multimap<std::uint64_t, std::size_t> wanted;
  for (std::size_t at = 0; at < rows.size(); ++at) {
    hosts.insert(rows[at].host);
    wanted.emplace(keyOf(rows[at]), begin + at);
  }
  const SqlParts parts = {
      {"hosts", listOf(hosts, clickhouseLiteral)},
      {"rows", listOf(wanted, [](const auto& row) { return std::to_string(row.first); })}};
  std::string answer;
  if (HttpOutcome problem = answerOf(&m_http, clickhouseStatement("texts", parts), &answer)) {
    return told(problem);
  }
  for (RowBinaryReader reader(answer); !reader.atEnd();) {
    const auto [first, last] = wanted.equal_range(reader.number<std::uint64_t>());
    RowTexts found;
    found.place.text = reader.text();
    found.place.pointer = reader.text();
    found.place.scope = reader.text();
    found.value = reader.text();
    std::for_each(first, last, [&](const auto& row) { (*texts)[row.second] = found; });
  }
  return std::nullopt;
}

}  // namespace tarn
