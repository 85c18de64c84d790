/// `sql array` through to its text, against a bare driver loop that prints the same text. bench/run sets up
/// the data sources.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/mirel_bench_rows.h"
#include "bench/mirel_bench_sql_bare.h"
#include "db/mirel_db_connection.h"
#include "json/mirel_json_value.h"

namespace {

mirel_string collectedRows(const char* dataSource, const std::string& sql) {
  DBConnection connection;
  connection.connect(dataSource);
  const std::unique_ptr<ArrayValue> rows(connection.query(sql.c_str()));
  return rows->stringify(0);
}

void sqlArray(benchmark::State& state, const char* dataSource) {
  // Ours first: it keeps a library in memory that the driver would leak into otherwise.
  const std::string few = rowsQuery(dataSource, "3");
  const mirel_string ours = collectedRows(dataSource, few);
  if (ours.length() < few.length() || !(ours == bareRows(dataSource, few).c_str())) {
    state.SkipWithError("the two ways differ");
    return;
  }
  const std::string sql = rowsQuery(dataSource, std::to_string(state.range(0)));
  for (auto round : state)
    benchmark::DoNotOptimize(collectedRows(dataSource, sql));
}

constexpr long kFew = 10'000;
constexpr long kMany = 1'000'000;

}  // namespace

BENCHMARK_CAPTURE(sqlArray, sqlite, "SQLITE")->RangeMultiplier(10)->Range(kFew, kMany)->UseRealTime();
BENCHMARK_CAPTURE(sqlArray, postgresql, "POSTGRESQL")->RangeMultiplier(10)->Range(kFew, kMany)->UseRealTime();
