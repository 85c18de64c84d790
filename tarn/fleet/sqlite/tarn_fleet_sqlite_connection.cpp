#include "tarn/fleet/sqlite/tarn_fleet_sqlite_connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace tarn {

namespace {

constexpr int kWait = 1000;  // milliseconds that SQLite itself waits for others
constexpr int kPause = 10;   // milliseconds, where it does not

/// What documents tell may be secret, so what keeps it is the owner's until he says otherwise.
FleetProblem touch(const std::string& file, bool mustExist) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | (mustExist ? 0 : O_CREAT), 0600);
  if (descriptor == -1) {
    return strerror(errno);
  }
  close(descriptor);
  return std::nullopt;
}

}  // namespace

SqliteConnection::~SqliteConnection() {
  sqlite3_close(m_handle);
}

void SqliteConnection::open(const std::string& file, bool mustExist) {
  m_problem = touch(file, mustExist);
  if (m_problem) {
    return;
  }
  // A name that begins with "file:" or ":" is a name like others.
  const std::string path = file.starts_with('/') ? file : "./" + file;
  if (sqlite3_open_v2(path.c_str(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) !=
      SQLITE_OK) {
    return fail();
  }
  sqlite3_busy_timeout(m_handle, kWait);
  sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(m_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

void SqliteConnection::run(const std::string& statements) {
  if (isGood() && sqlite3_exec(m_handle, statements.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    fail();
  }
}

void SqliteConnection::runAlone(const char* statement) {
  int code = SQLITE_OK;
  for (int waited = 0; isGood() && waited <= kWait; waited += kPause) {
    code = sqlite3_exec(m_handle, statement, nullptr, nullptr, nullptr);
    if (code != SQLITE_BUSY) {
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(kPause));
  }
  if (code != SQLITE_OK) {
    fail();
  }
}

std::int64_t SqliteConnection::number(std::string_view query) {
  SqliteStatement statement(*this, query);
  return statement.step() ? statement.integer(0) : 0;
}

void SqliteConnection::fail(std::string problem) {
  if (isGood()) {
    m_problem = std::move(problem);
  }
}

void SqliteConnection::fail() {
  fail(m_handle == nullptr ? "out of memory" : sqlite3_errmsg(m_handle));
}

FleetProblem SqliteConnection::takeProblem() {
  return std::exchange(m_problem, std::nullopt);
}

SqliteStatement::SqliteStatement(SqliteConnection& connection, std::string_view text)
    : m_connection(connection) {
  if (connection.isGood()) {
    check(sqlite3_prepare_v3(connection.handle(), text.data(), static_cast<int>(text.size()),
                             SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
  }
}

SqliteStatement::~SqliteStatement() {
  sqlite3_finalize(m_statement);
}

void SqliteStatement::check(int code) {
  if (code != SQLITE_OK) {
    m_connection.fail();
  }
}

SqliteStatement& SqliteStatement::bind(std::int64_t number) {
  check(sqlite3_bind_int64(m_statement, ++m_parameter, number));
  return *this;
}

SqliteStatement& SqliteStatement::bind(std::string_view text) {
  check(sqlite3_bind_text64(m_statement, ++m_parameter, text.empty() ? "" : text.data(), text.size(),
                            SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

SqliteStatement& SqliteStatement::bind(double number) {
  check(sqlite3_bind_double(m_statement, ++m_parameter, number));
  return *this;
}

SqliteStatement& SqliteStatement::bindBlob(std::string_view bytes) {
  check(sqlite3_bind_blob64(m_statement, ++m_parameter, bytes.empty() ? "" : bytes.data(), bytes.size(),
                            SQLITE_STATIC));
  return *this;
}

SqliteStatement& SqliteStatement::bindNull() {
  check(sqlite3_bind_null(m_statement, ++m_parameter));
  return *this;
}

bool SqliteStatement::step() {
  const int code = m_connection.isGood() ? sqlite3_step(m_statement) : SQLITE_DONE;
  if (code == SQLITE_ROW) {
    return true;
  }
  if (code != SQLITE_DONE) {
    m_connection.fail();
  }
  reset();
  return false;
}

void SqliteStatement::reset() {
  sqlite3_reset(m_statement);
  m_parameter = 0;
}

int SqliteStatement::columns() const {
  return sqlite3_column_count(m_statement);
}

bool SqliteStatement::isNull(int column) const {
  return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

std::int64_t SqliteStatement::integer(int column) const {
  return sqlite3_column_int64(m_statement, column);
}

std::string_view SqliteStatement::text(int column) const {
  if (isNull(column)) {
    return {};
  }
  const unsigned char* const bytes = sqlite3_column_text(m_statement, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
  return bytes == nullptr ? "" : std::string_view(reinterpret_cast<const char*>(bytes), size);
}

}  // namespace tarn
