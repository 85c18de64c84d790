#pragma once
/// A file of SQLite's and its statements. The first thing that goes wrong is kept by the connection, and
/// nothing more is done until somebody takes it.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarn/fleet/tarn_fleet_database.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tarn {

class SqliteConnection {
 public:
  SqliteConnection() = default;
  SqliteConnection(const SqliteConnection&) = delete;
  SqliteConnection& operator=(const SqliteConnection&) = delete;
  ~SqliteConnection();

  void open(const std::string& file, bool mustExist);
  /// Runs statements that give no rows.
  void run(const std::string& statements);
  /// Runs a statement that has the file to itself, for which SQLite does not wait.
  void runAlone(const char* statement);
  /// The first column of the first row, 0 when there is none.
  std::int64_t number(std::string_view query);

  bool isGood() const { return !m_problem; }
  void fail(std::string problem);
  /// Keeps what SQLite says of its last call.
  void fail();
  FleetProblem takeProblem();

  sqlite3* handle() const { return m_handle; }

 private:
  sqlite3* m_handle = nullptr;
  FleetProblem m_problem;
};

/// A statement that is run again and again:
///
///     for (statement.bind(host).bind(since); statement.step();) { ... statement.integer(0) ... }
///
/// Texts are not copied: they have to stay until `step` has given false.
class SqliteStatement {
 public:
  SqliteStatement(SqliteConnection& connection, std::string_view text);
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;
  ~SqliteStatement();

  /// The next parameter.
  SqliteStatement& bind(std::int64_t number);
  SqliteStatement& bind(std::string_view text);
  SqliteStatement& bind(double number);
  SqliteStatement& bindBlob(std::string_view bytes);
  SqliteStatement& bindNull();
  template <class Value>
  SqliteStatement& bind(const std::optional<Value>& value) {
    return value ? bind(*value) : bindNull();
  }

  /// Whether there is a row. When there is none any more the statement can be bound again.
  bool step();
  /// Ends before the last row.
  void reset();

  int columns() const;
  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  /// Of this row; a null has no `data()`.
  std::string_view text(int column) const;

 private:
  void check(int code);

  SqliteConnection& m_connection;
  sqlite3_stmt* m_statement = nullptr;
  int m_parameter = 0;
};

}  // namespace tarn
