// What a loader writes into ClickHouse.

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tarn/document/tarn_document_siphash.h"
#include "tarn/fleet/clickhouse/tarn_fleet_clickhouse.h"
#include "tarn/fleet/clickhouse/tarn_fleet_literal.h"
#include "tarn/fleet/clickhouse/tarn_fleet_rowbinary.h"
#include "tarn/fleet/clickhouse/tarn_fleet_statement.h"

namespace tarn {

namespace {

/// A piece of an insert, in bytes.
constexpr std::size_t kPiece = 1 << 20;
constexpr std::size_t kMostMoved = 1000;

/// Rows are written in this order: should the insert break off, what is there is what an older state of the
/// host was, with rows that repeat their predecessors.
template <class Fact>
std::vector<const Fact*> newestFirst(const std::vector<Fact>& facts) {
  std::vector<const Fact*> sorted;
  sorted.reserve(facts.size());
  for (const Fact& fact : facts) {
    sorted.push_back(&fact);
  }
  std::ranges::stable_sort(sorted, std::ranges::greater(), &Fact::since);
  return sorted;
}

/// Inserts `rows`, each written by `write`.
template <class Rows, class Write>
HttpOutcome insertRows(FleetHttp* http, std::string_view table, const Rows& rows, const Write& write) {
  if (rows.empty()) {
    return std::nullopt;
  }
  RowBinaryWriter writer;
  auto row = rows.begin();
  return http->insert(fmt::format("INSERT INTO {} FORMAT RowBinary", table), [&] {
    writer.clear();
    for (; row != rows.end() && writer.bytes().size() < kPiece; ++row) {
      write(*row, &writer);
    }
    return writer.bytes();
  });
}

void writeFact(const FleetFact& fact, std::uint64_t version, bool scoped, RowBinaryWriter* row) {
  row->text(fact.host);
  row->text(fact.place->pointer);
  row->text(fact.place->text);
  if (scoped) {
    row->text(fact.place->scope);
  }
  row->number(fact.since);
  row->text(fact.value.value_or(""));
  row->flag(fact.value.has_value());
  row->flag(fact.isVoid);
  row->number(version);
}

void writeLatest(const FleetFact& fact, RowBinaryWriter* row) {
  row->text(fact.host);
  row->text(fact.place->pointer);
  row->text(fact.place->text);
  row->number(fact.since);
  row->text(fact.value.value_or(""));
}

void writeDocument(const FleetDocument& document, std::uint64_t written, RowBinaryWriter* row) {
  row->fixed(bytesOf(document.hash));
  row->text(document.host);
  row->number(document.moment);
  row->text(document.file);
  row->number(document.bytes);
  row->number(document.seen);
  row->text(document.state);
  row->text(document.problem);
  row->number(document.line);
  row->number(document.column);
  row->text(document.hostFrom);
  row->text(document.timeFrom);
  row->text(document.engine);
  row->text(document.version);
  row->text(document.database);
  row->number(document.answered);
  row->number(document.asked);
  row->count(document.scopes.size());
  for (const std::string& scope : document.scopes) {
    row->number(sipHash(scope));
  }
  row->number(written);
}

}  // namespace

FleetProblem ClickhouseDatabase::write(const FleetBatch& batch) {
  const std::uint64_t version = m_claim.number();
  const std::vector<const FleetFact*> facts = newestFirst(batch.facts);
  const auto insert = [this](std::string_view table, const auto& rows, const auto& write) {
    const HttpOutcome problem = rows.empty() ? std::nullopt : m_claim.confirm();
    return problem ? problem : insertRows(&m_http, table, rows, write);
  };
  m_isWhole = false;
  HttpOutcome problem = insert("history", facts, [version](const FleetFact* fact, RowBinaryWriter* row) {
    writeFact(*fact, version, true, row);
  });
  if (!problem) {
    problem = insert("fact", facts, [version](const FleetFact* fact, RowBinaryWriter* row) {
      writeFact(*fact, version, false, row);
    });
  }
  if (!problem) {
    problem = insert("latest", batch.latest, writeLatest);
  }
  if (!problem) {
    problem =
        insert("document", batch.documents, [version](const FleetDocument& document, RowBinaryWriter* row) {
          writeDocument(document, version, row);
        });
  }
  m_isWhole = !problem;
  return told(problem);
}

/// Kept until the claim is given back, or there are many: one statement for all.
FleetProblem ClickhouseDatabase::moved(const FleetDocument& document) {
  m_moved.push_back({document.hash, document.file, document.seen});
  return m_moved.size() < kMostMoved ? std::nullopt : writeMoved();
}

FleetProblem ClickhouseDatabase::copied(const FleetCopy& copy) {
  m_copies.push_back(copy);
  return std::nullopt;
}

FleetProblem ClickhouseDatabase::writeCopies() {
  const std::vector<FleetCopy> copies = std::exchange(m_copies, {});
  return told(insertRows(&m_http, "copy", copies, [](const FleetCopy& copy, RowBinaryWriter* row) {
    row->number(copy.seen);
    row->text(copy.other);
  }));
}

FleetProblem ClickhouseDatabase::writeMoved() {
  if (m_moved.empty()) {
    return std::nullopt;
  }
  const auto hex = [](const MovedDocument& document) {
    return fmt::format("'{:02x}'", fmt::join(document.hash, ""));
  };
  const SqlParts parts = {
      {"files",
       listOf(m_moved, [](const MovedDocument& document) { return clickhouseLiteral(document.file); })},
      {"seen",
       listOf(m_moved,
              [](const MovedDocument& document) { return fmt::format("toInt64({})", document.seen); })},
      {"keys",
       listOf(m_moved,
              [](const MovedDocument& document) { return clickhouseLiteral(bytesOf(document.hash)); })},
      {"hashes", listOf(m_moved, hex)},
      {"written", std::to_string(m_claim.number())}};
  m_moved.clear();
  HttpOutcome problem = m_claim.confirm();
  return told(problem ? problem : m_http.ask(clickhouseStatement("moved", parts)));
}

}  // namespace tarn
