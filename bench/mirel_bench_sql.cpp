/// `sql array` through to its text, against a bare driver loop that prints the same text.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "bench/mirel_bench_sql_bare.h"
#include "db/mirel_db_connection.h"
#include "json/mirel_json_value.h"

namespace {

constexpr char kDataSource[] = "BENCH";

/// Rows of eight columns, computed by the engine: numbers, short texts, a longer one, NULLs.
std::string query(long rows) {
  return "with recursive r(n) as (select 1 union all select n + 1 from r where n < " + std::to_string(rows) +
         ") select n as ID, 'SYSCAT' as TABSCHEMA, 'TABLE' || n as TABNAME, n % 97 as COLCOUNT, "
         "n * 1.5 as CARD, nullif(n % 3, 0) as NPAGES, '2026-11-21-02.44.01.000000' as STATS_TIME, "
         "'a longer text of forty characters or so..' as REMARKS from r";
}

/// A data source of our own, in memory: set up before the driver manager reads its files, gone at the end.
class DataSource {
 public:
  DataSource() {
    if (mkdtemp(m_folder) == nullptr || setenv("ODBCINI", file().c_str(), 1) != 0) {
      std::abort();
    }
    std::ofstream(file()) << "[" << kDataSource << "]\nDriver=SQLite3\nDatabase=:memory:\n";
  }
  ~DataSource() { std::filesystem::remove_all(m_folder); }

 private:
  std::string file() const { return std::string(m_folder) + "/odbc.ini"; }

  char m_folder[32] = "/tmp/mirel-bench-XXXXXX";
};

const DataSource dataSource;

/// A figure of /proc/self/status in bytes.
long memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == name) {
      long kilobytes = 0;
      status >> kilobytes;
      return kilobytes * 1024;
    }
  }
  return 0;
}

std::string collectedRows(const std::string& sql) {
  DBConnection connection;
  connection.connect(kDataSource);
  const std::unique_ptr<ArrayValue> rows(connection.query(sql.c_str()));
  return rows->stringify(0).c_str();
}

void measure(benchmark::State& state, std::string (*rowsOf)(const std::string&)) {
  const std::string sql = query(state.range(0));
  if (bareRows(kDataSource, query(3)) != collectedRows(query(3))) {
    state.SkipWithError("the two ways differ");
    return;
  }
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts anew
  const long before = memory("VmRSS:");
  for (auto round : state) {
    benchmark::DoNotOptimize(rowsOf(sql));
  }
  state.counters["peakBytesPerRow"] =
      static_cast<double>(memory("VmHWM:") - before) / static_cast<double>(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void sqlArray(benchmark::State& state) {
  measure(state, collectedRows);
}

void bareLoop(benchmark::State& state) {
  measure(state, [](const std::string& sql) { return bareRows(kDataSource, sql); });
}

}  // namespace

BENCHMARK(bareLoop)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Complexity(benchmark::oN);
BENCHMARK(sqlArray)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Complexity(benchmark::oN);
