#pragma once
/// SQLite's extension interface, and owners for what it hands out.
///
/// Everything here is allocated by the engine, so that a failed allocation is an ordinary SQLITE_NOMEM.

#include <sqlite3ext.h>

#include <memory>

SQLITE_EXTENSION_INIT3

struct Release {
  void operator()(char* text) const { sqlite3_free(text); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// A text made by sqlite3_mprintf or sqlite3_str_finish; null when there was no memory for it.
using Text = std::unique_ptr<char, Release>;
using Statement = std::unique_ptr<sqlite3_stmt, Release>;

/// Prepares one statement. Gives null and the engine's code in `code` when that fails; a null `sql` is
/// SQLITE_NOMEM.
inline Statement prepare(sqlite3* db, const Text& sql, int& code) {
  sqlite3_stmt* statement = nullptr;
  code = sql ? sqlite3_prepare_v2(db, sql.get(), -1, &statement, nullptr) : SQLITE_NOMEM;
  return Statement(statement);
}
