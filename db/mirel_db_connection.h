#pragma once

#include "common/mirel_string.h"
#include "platform/sqlcli.h"

class Value;
class ArrayValue;
class ObjectValue;

/// The only door to the database: one environment, one connection, one statement at a time, over the SQL
/// call-level interface. It connects as the operating-system user, never with a user name or password.
///
/// A call that fails is reported on standard error, "Trying to run: " and the step on one line and every
/// diagnostic message on its own; otherwise it shows in the answer only. Statement texts are never printed.
class DBConnection {
 public:
  DBConnection() = default;
  /// Disconnects.
  ~DBConnection();
  DBConnection(const DBConnection&) = delete;
  DBConnection& operator=(const DBConnection&) = delete;

  /// Returns the code of the last interface call: 0 or 1 when the connection stands. Once per object.
  SQLRETURN connect(const mirel_string& database);
  /// Whether there was a connection to close.
  bool disconnect();
  bool connected() const { return m_connected; }

  /// All rows, as objects of column name and text. Empty when there are none or the query fails.
  ArrayValue* query(const mirel_string& sql);
  /// The first row. Empty when there is none or the query fails.
  ObjectValue* queryOne(const mirel_string& sql);
  /// The first row's value of a column, whose name is matched in upper case. The text "null" when there is
  /// no connection; null when there is no row, no such column, or the query fails.
  Value* queryValue(const mirel_string& sql, const mirel_string& column);

  /// Runs a statement that returns no rows. The statement stays allocated until `freeStmt`, also when it
  /// fails; false, silently, without a connection.
  bool exec(const mirel_string& statement);
  SQLRETURN freeStmt();

  /// The number of tables visible through the connection.
  unsigned long NumTables();

 private:
  bool allocateStatement();
  bool execute(const mirel_string& statement);
  /// Allocates and runs; releases the statement again when it does not run.
  bool open(const mirel_string& sql);
  unsigned long countTables();
  void freeHandles();

  bool m_connected = false;
  SQLHANDLE m_env = SQL_NULL_HANDLE;
  SQLHANDLE m_dbc = SQL_NULL_HANDLE;
  SQLHANDLE m_stmt = SQL_NULL_HANDLE;
};

/// The report of a failed step: its name and the handle's diagnostic messages, on standard error. A message
/// that does not fit 255 bytes is cut and ends the report.
void extract_error(const char* step, SQLHANDLE handle, short handleType);
