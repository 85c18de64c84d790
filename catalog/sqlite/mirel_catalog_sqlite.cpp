/// A catalog for any SQLite database: a loadable extension that shows the engine's own facts as the views
/// syscat.*, sysstat.*, syszent.* and the table functions db_get_cfg and sysproc.admin_get_encryption_info.
/// A data source of the SQLite ODBC driver loads it with the line
///
///   LoadExt = /path/to/mirel_catalog_sqlite.so
///
/// Loading attaches one database in memory for each schema and puts virtual tables there; what they show is
/// in mirel_catalog_sqlite_views.h. The database itself is only read: no write lock is ever asked for, and
/// the connection leaves a write-ahead log as it found it. Loading a second time changes nothing.

#include <cstddef>
#include <cstring>
#include <new>

#include "catalog/sqlite/mirel_catalog_sqlite_engine.h"
#include "catalog/sqlite/mirel_catalog_sqlite_functions.h"
#include "catalog/sqlite/mirel_catalog_sqlite_views.h"

SQLITE_EXTENSION_INIT1

namespace {

constexpr const char* kModule = "mirel_catalog";
constexpr int kOldestEngine = 3035000;  // the first that knows AS MATERIALIZED

struct Table : sqlite3_vtab {
  sqlite3* db;
  const View* view;
};

struct Cursor : sqlite3_vtab_cursor {
  Statement rows;
  sqlite3_int64 number;  ///< of the current row
  bool done;
};

/// Makes an object in the engine's memory, all zero; null when there is none.
template <typename T>
T* make() {
  void* memory = sqlite3_malloc64(sizeof(T));
  if (memory == nullptr) {
    return nullptr;
  }
  return new (memory) T{};
}

template <typename T>
void destroy(T* object) {
  object->~T();
  sqlite3_free(object);
}

const View* findView(const char* schema, const char* name) {
  for (const View& view : kViews) {
    if (sqlite3_stricmp(view.schema, schema) == 0 && sqlite3_stricmp(view.name, name) == 0) {
      return &view;
    }
  }
  return nullptr;
}

/// The CREATE TABLE statement that tells the engine a view's columns.
Text declaration(sqlite3* db, const View& view) {
  sqlite3_str* sql = sqlite3_str_new(db);
  const char* separator = "create table x(";
  for (const Column& column : view.columns) {
    sqlite3_str_appendf(sql, "%s\"%w\" %s", separator, column.name, column.type);
    separator = ", ";
  }
  sqlite3_str_appendall(sql, ")");
  return Text(sqlite3_str_finish(sql));
}

/// The query behind a view. Columns whose bit is not set in `used` are left out, and so is their cost.
Text definition(sqlite3* db, const View& view, int used) {
  const bool analyzed = sqlite3_table_column_metadata(db, "main", "sqlite_stat1", "stat", nullptr, nullptr,
                                                      nullptr, nullptr, nullptr) == SQLITE_OK;
  sqlite3_str* sql = sqlite3_str_new(db);
  sqlite3_str_appendf(sql, kCommon, analyzed ? kAnalyzed : kNeverAnalyzed);
  const char* separator = "select ";
  for (const Column& column : view.columns) {
    sqlite3_str_appendall(sql, separator);
    sqlite3_str_appendall(sql, (used & 1) != 0 ? column.expression : "null");
    separator = ", ";
    used >>= 1;
  }
  sqlite3_str_appendf(sql, " %s", view.source);
  return Text(sqlite3_str_finish(sql));
}

int connectTable(sqlite3* db, void*, int, const char* const* arguments, sqlite3_vtab** table, char** error) {
  const View* view = findView(arguments[1], arguments[2]);
  if (view == nullptr) {
    *error = sqlite3_mprintf("the catalog has no view %s.%s", arguments[1], arguments[2]);
    return SQLITE_ERROR;
  }
  const Text sql = declaration(db, *view);
  if (const int code = sql ? sqlite3_declare_vtab(db, sql.get()) : SQLITE_NOMEM; code != SQLITE_OK) {
    return code;
  }
  sqlite3_vtab_config(db, SQLITE_VTAB_DIRECTONLY);  // not for a database's own views and triggers
  Table* made = make<Table>();
  if (made == nullptr) {
    return SQLITE_NOMEM;
  }
  made->db = db;
  made->view = view;
  *table = made;
  return SQLITE_OK;
}

/// Differs from connectTable by its address, or the module's name would be a table of its own.
int createTable(sqlite3* db, void* data, int count, const char* const* arguments, sqlite3_vtab** table,
                char** error) {
  return connectTable(db, data, count, arguments, table, error);
}

int disconnectTable(sqlite3_vtab* table) {
  destroy(static_cast<Table*>(table));
  return SQLITE_OK;
}

/// Every query is a full pass over the columns in use; its conditions are the engine's to check, but for the
/// argument of a table function.
int planQuery(sqlite3_vtab* table, sqlite3_index_info* plan) {
  const View& view = *static_cast<Table*>(table)->view;
  for (int i = 0; i < plan->nConstraint; i++) {
    const auto& constraint = plan->aConstraint[i];
    if (constraint.op != SQLITE_INDEX_CONSTRAINT_EQ || constraint.iColumn < 0 ||
        std::strstr(view.columns[static_cast<std::size_t>(constraint.iColumn)].type, "HIDDEN") == nullptr) {
      continue;
    }
    if (!constraint.usable) {
      return SQLITE_CONSTRAINT;
    }
    plan->aConstraintUsage[i].argvIndex = 1;
    plan->aConstraintUsage[i].omit = 1;
    break;
  }
  plan->idxNum = static_cast<int>(plan->colUsed & 0x7fffffff);
  return SQLITE_OK;
}

int openCursor(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
  *cursor = make<Cursor>();
  return *cursor == nullptr ? SQLITE_NOMEM : SQLITE_OK;
}

int closeCursor(sqlite3_vtab_cursor* cursor) {
  destroy(static_cast<Cursor*>(cursor));
  return SQLITE_OK;
}

/// Passes the inner query's message on with its code.
int failed(sqlite3_vtab* table, int code) {
  sqlite3_free(table->zErrMsg);
  table->zErrMsg = sqlite3_mprintf("%s", sqlite3_errmsg(static_cast<Table*>(table)->db));
  return code;
}

int nextRow(sqlite3_vtab_cursor* base) {
  auto* cursor = static_cast<Cursor*>(base);
  const int code = sqlite3_step(cursor->rows.get());
  cursor->done = code != SQLITE_ROW;
  cursor->number++;
  return code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_OK : failed(base->pVtab, code);
}

int startQuery(sqlite3_vtab_cursor* base, int used, const char*, int count, sqlite3_value** arguments) {
  auto* cursor = static_cast<Cursor*>(base);
  const auto* table = static_cast<Table*>(base->pVtab);
  int code = SQLITE_OK;
  cursor->rows = prepare(table->db, definition(table->db, *table->view, used), code);
  cursor->number = 0;
  if (code == SQLITE_OK && count > 0 && sqlite3_bind_parameter_count(cursor->rows.get()) > 0) {
    code = sqlite3_bind_value(cursor->rows.get(), 1, arguments[0]);
  }
  return code == SQLITE_OK ? nextRow(base) : failed(base->pVtab, code);
}

int atEnd(sqlite3_vtab_cursor* cursor) {
  return static_cast<Cursor*>(cursor)->done;
}

int readColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
  sqlite3_result_value(context, sqlite3_column_value(static_cast<Cursor*>(cursor)->rows.get(), column));
  return SQLITE_OK;
}

int rowNumber(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) {
  *number = static_cast<Cursor*>(cursor)->number;
  return SQLITE_OK;
}

/// Read-only tables that take no part in transactions.
constexpr sqlite3_module catalogModule() {
  sqlite3_module module{};
  module.xCreate = createTable;
  module.xConnect = connectTable;
  module.xBestIndex = planQuery;
  module.xDisconnect = disconnectTable;
  module.xDestroy = disconnectTable;
  module.xOpen = openCursor;
  module.xClose = closeCursor;
  module.xFilter = startQuery;
  module.xNext = nextRow;
  module.xEof = atEnd;
  module.xColumn = readColumn;
  module.xRowid = rowNumber;
  return module;
}
constexpr sqlite3_module kCatalog = catalogModule();

int run(sqlite3* db, const Text& sql, char** error = nullptr) {
  return sql ? sqlite3_exec(db, sql.get(), nullptr, nullptr, error) : SQLITE_NOMEM;
}

/// Attaches the schemas and fills them. Counts in `attached` the schemas that stand, on failure too.
int install(sqlite3* db, std::size_t& attached, char** error) {
  int code = registerFunctions(db);
  if (code == SQLITE_OK) {
    code = sqlite3_create_module(db, kModule, &kCatalog, nullptr);
  }
  for (const char* schema : kSchemas) {
    if (code == SQLITE_OK) {
      code = run(db, Text(sqlite3_mprintf("attach ':memory:' as \"%w\"", schema)), error);
    }
    attached += code == SQLITE_OK;
  }
  for (const View& view : kViews) {
    if (code == SQLITE_OK) {
      code = run(db,
                 Text(sqlite3_mprintf("create virtual table \"%w\".\"%w\" using %s", view.schema, view.name,
                                      kModule)),
                 error);
    }
  }
  const bool pages = sqlite3_compileoption_used("ENABLE_DBSTAT_VTAB") != 0;
  if (code == SQLITE_OK) {
    code = sqlite3_exec(db,
                        pages ? "create virtual table sysstat.dbstat using dbstat(main)"
                              : "create table sysstat.dbstat(name, pageno, aggregate)",
                        nullptr, nullptr, error);
  }
  return code;
}

/// Takes the schemas off again after a failure.
void uninstall(sqlite3* db, std::size_t attached) {
  for (const char* schema : kSchemas.first(attached)) {
    run(db, Text(sqlite3_mprintf("detach \"%w\"", schema)));
  }
}

}  // namespace

/// The engine's entry point, found by its name whatever the file is called.
extern "C" [[gnu::visibility("default")]] int sqlite3_extension_init(sqlite3* db, char** error,
                                                                     const sqlite3_api_routines* api) {
  SQLITE_EXTENSION_INIT2(api)
  const char* loaded = sqlite3_db_filename(db, kSchemas.front());
  if (loaded != nullptr && *loaded == '\0') {
    return SQLITE_OK;
  }
  if (sqlite3_libversion_number() < kOldestEngine) {
    *error = sqlite3_mprintf("the catalog needs SQLite 3.35 or later");
    return SQLITE_ERROR;
  }
  if (sqlite3_get_autocommit(db) == 0) {
    *error = sqlite3_mprintf("the catalog cannot be loaded inside a transaction");
    return SQLITE_ERROR;
  }
  std::size_t attached = 0;
  if (const int code = install(db, attached, error); code != SQLITE_OK) {
    uninstall(db, attached);
    return code;
  }
  // Or the last connection to close would copy the write-ahead log into the database file.
  sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  return SQLITE_OK;
}
