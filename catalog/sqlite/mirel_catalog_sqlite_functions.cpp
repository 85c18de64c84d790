#include "catalog/sqlite/mirel_catalog_sqlite_functions.h"

#include <sys/stat.h>

#include <algorithm>

#include "catalog/sqlite/mirel_catalog_sqlite_engine.h"

namespace {

const char* textOf(sqlite3_value* value) {
  return static_cast<const char*>(static_cast<const void*>(sqlite3_value_text(value)));
}

/// Answers with the first value that the statement yields; NULL when the engine refuses it.
void answerFirst(sqlite3_context* context, Text sql) {
  int code = SQLITE_OK;
  Statement statement = prepare(sqlite3_context_db_handle(context), sql, code);
  if (code == SQLITE_OK) {
    code = sqlite3_step(statement.get());
  }
  if (code == SQLITE_ROW) {
    sqlite3_result_value(context, sqlite3_column_value(statement.get(), 0));
  } else if (code == SQLITE_NOMEM || code == SQLITE_INTERRUPT) {
    sqlite3_result_error_code(context, code);
  }
}

void rows(sqlite3_context* context, int, sqlite3_value** arguments) {
  answerFirst(context, Text(sqlite3_mprintf("select count(*) from main.\"%w\"", textOf(arguments[0]))));
}

void setting(sqlite3_context* context, int, sqlite3_value** arguments) {
  answerFirst(context,
              Text(sqlite3_mprintf("pragma \"%w\".\"%w\"", textOf(arguments[0]), textOf(arguments[1]))));
}

void readable(sqlite3_context* context, int, sqlite3_value** arguments) {
  const Text sql(sqlite3_mprintf("select * from main.\"%w\"", textOf(arguments[0])));
  int code = SQLITE_OK;
  prepare(sqlite3_context_db_handle(context), sql, code);
  if (code == SQLITE_NOMEM) {
    sqlite3_result_error_nomem(context);
  } else {
    sqlite3_result_int(context, code == SQLITE_OK);
  }
}

void grows(sqlite3_context* context, int, sqlite3_value** arguments) {
  int growing = 0;
  const int code =
      sqlite3_table_column_metadata(sqlite3_context_db_handle(context), "main", textOf(arguments[0]),
                                    textOf(arguments[1]), nullptr, nullptr, nullptr, nullptr, &growing);
  if (code == SQLITE_NOMEM) {
    sqlite3_result_error_nomem(context);
  } else {
    sqlite3_result_int(context, growing);
  }
}

void changed(sqlite3_context* context, int, sqlite3_value**) {
  const char* file = sqlite3_db_filename(sqlite3_context_db_handle(context), "main");
  struct stat database {
  }, log{};
  if (file == nullptr || stat(file, &database) != 0) {
    return;
  }
  // In write-ahead mode the newest changes lie in the log.
  const Text logFile(sqlite3_mprintf("%s-wal", file));
  if (logFile && stat(logFile.get(), &log) == 0) {
    database.st_mtime = std::max(database.st_mtime, log.st_mtime);
  }
  sqlite3_result_int64(context, database.st_mtime);
}

void reserved(sqlite3_context* context, int, sqlite3_value**) {
  int bytes = -1;  // asks without changing anything
  if (sqlite3_file_control(sqlite3_context_db_handle(context), "main", SQLITE_FCNTL_RESERVE_BYTES, &bytes) ==
      SQLITE_OK) {
    sqlite3_result_int(context, bytes);
  }
}

struct Function {
  const char* name;
  int arguments;
  void (*body)(sqlite3_context*, int, sqlite3_value**);
};
constexpr Function kFunctions[] = {
    {"mirel_rows", 1, rows},       {"mirel_readable", 1, readable}, {"mirel_grows", 2, grows},
    {"mirel_setting", 2, setting}, {"mirel_changed", 0, changed},   {"mirel_reserved", 0, reserved},
};

}  // namespace

int registerFunctions(sqlite3* db) {
  int code = SQLITE_OK;
  for (const Function& f : kFunctions) {
    if (code == SQLITE_OK) {
      code = sqlite3_create_function(db, f.name, f.arguments, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr,
                                     f.body, nullptr, nullptr);
    }
  }
  return code;
}
