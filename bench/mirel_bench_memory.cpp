/// One piece of work in a process of its own; prints how many bytes of text it made and the peak of the
/// process's memory, in bytes.
///
///     mirel_bench_memory rows DATASOURCE NUMBER      `sql array` through to its text
///     mirel_bench_memory drained DATASOURCE NUMBER   the driver's part of that
///     mirel_bench_memory execute COMMAND             a command's output through to its text
///     mirel_bench_memory tarn COMMAND FILE           a command of tarn, its output thrown away
///     mirel_bench_memory tree FILE                   a document's tree

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "bench/mirel_bench_peak.h"
#include "bench/mirel_bench_rows.h"
#include "bench/mirel_bench_sql_bare.h"
#include "collectors/mirel_collectors_system.h"
#include "db/mirel_db_connection.h"
#include "json/mirel_json_value.h"
#include "platform/services.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_program.h"
#include "tarn/document/tarn_document_tree.h"

namespace {

unsigned long rows(const char* dataSource, const std::string& sql) {
  DBConnection connection;
  connection.connect(dataSource);
  const std::unique_ptr<ArrayValue> all(connection.query(sql.c_str()));
  return all->stringify(0).length();
}

unsigned long sizeOf(const char* path) {
  return static_cast<unsigned long>(std::ifstream(path, std::ios::ate).tellg());
}

unsigned long tarnCommand(int count, char** arguments) {
  tarn::Console console(STDIN_FILENO, open("/dev/null", O_WRONLY), STDERR_FILENO);
  return tarn::runProgram(count - 1, arguments + 1, console) == 0 ? sizeOf(arguments[count - 1]) : 0;
}

unsigned long tree(const char* path) {
  std::ifstream file(path);
  std::string bytes(sizeOf(path), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  const tarn::Tree tree(std::move(bytes));
  return tree.ending().state == tarn::State::whole ? sizeOf(path) : 0;
}

unsigned long work(int count, char** arguments) {
  const std::string kind = count > 2 ? arguments[1] : "";
  if (kind == "execute") {
    return PrimitiveValue(executeGet(arguments[2])).stringify(0).length();
  }
  if (kind == "tree") {
    return tree(arguments[2]);
  }
  if (kind == "tarn") {
    return tarnCommand(count, arguments);
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
