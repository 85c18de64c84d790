#pragma once
/// What SQL alone cannot ask the engine: scalar functions that the views' expressions call.
///
/// - mirel_rows(table): rows of a table of the main database, counted one by one.
/// - mirel_readable(name): 1 when a query can use the table or view, 0 when not (a view on a missing table).
/// - mirel_grows(table, column): 1 when the column is an AUTOINCREMENT key, whose numbers only ever grow.
/// - mirel_setting(schema, pragma): present value of a PRAGMA.
/// - mirel_changed(): when the database file last changed, in seconds since 1970.
/// - mirel_reserved(): bytes at the end of each page that belong to an extension.
///
/// They answer NULL where the engine does not know, or cannot say because an object is damaged. None of
/// them runs anything that the database's schema defines, and none can be used inside that schema.

struct sqlite3;

/// Returns SQLITE_OK or the engine's error code.
int registerFunctions(sqlite3* db);
