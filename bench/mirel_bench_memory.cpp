/// One piece of work in a process of its own; prints how many bytes of text it made and the peak of the
/// process's memory, in bytes.
///
///     mirel_bench_memory rows DATASOURCE NUMBER      `sql array` through to its text
///     mirel_bench_memory drained DATASOURCE NUMBER   the driver's part of that
///     mirel_bench_memory execute COMMAND             a command's output through to its text

#include <cstdio>
#include <memory>
#include <string>

#include "bench/mirel_bench_peak.h"
#include "bench/mirel_bench_rows.h"
#include "bench/mirel_bench_sql_bare.h"
#include "collectors/mirel_collectors_system.h"
#include "db/mirel_db_connection.h"
#include "json/mirel_json_value.h"
#include "platform/services.h"

namespace {

unsigned long rows(const char* dataSource, const std::string& sql) {
  DBConnection connection;
  connection.connect(dataSource);
  const std::unique_ptr<ArrayValue> all(connection.query(sql.c_str()));
  return all->stringify(0).length();
}

unsigned long work(int count, char** arguments) {
  const std::string kind = count > 2 ? arguments[1] : "";
  if (kind == "execute") {
    return PrimitiveValue(executeGet(arguments[2])).stringify(0).length();
  }
  if (kind.empty() || count < 4) {
    return 0;
  }
  const std::string sql = rowsQuery(arguments[2], arguments[3]);
  return kind == "rows" ? rows(arguments[2], sql) : drainedRows(arguments[2], sql);
}

}  // namespace

int main(int count, char** arguments) {
  ossOneTimeOnly();
  const unsigned long made = work(count, arguments);
  std::printf("%lu %lu\n", made, peak());
  return made > 0 ? 0 : 1;
}
