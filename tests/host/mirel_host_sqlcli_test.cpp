#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "platform/admin.h"
#include "platform/sqlcli.h"

namespace {

namespace fs = std::filesystem;

const fs::path directory = fs::temp_directory_path() / ("mirel_sqlcli_" + std::to_string(getpid()));

bool succeeded(SQLRETURN code) {
  return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

/// The diagnostic report as the core takes it.
std::string report(short type, SQLHANDLE handle) {
  std::string all;
  SQLRETURN code = SQL_SUCCESS;
  for (short record = 1; code == SQL_SUCCESS; ++record) {
    char state[6], message[256];
    int nativeError;
    short length;
    code = SQLGetDiagRec(type, handle, record, state, &nativeError, message, sizeof message, &length);
    all += succeeded(code) ? message + std::string("\n") : "";
  }
  return all + std::to_string(code);
}

/// The adapter on real SQLite data sources: GOOD and BAD (a directory) of the system, MINE and good of the
/// user.
class Sqlcli : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    fs::create_directory(directory);
    const std::string database = "Driver=SQLite3\nDatabase=" + (directory / "db").string() + "\n";
    std::ofstream(directory / "odbcinst.ini") << "[SQLite3]\nDriver=libsqlite3odbc.so\n";
    std::ofstream(directory / "odbc.ini") << "[GOOD]\n" << database << "[BAD]\nDriver=SQLite3\nDatabase=/\n";
    std::ofstream(directory / "user.ini") << "[MINE]\n" << database << "[good]\n" << database;
    setenv("ODBCSYSINI", directory.c_str(), 1);
    setenv("ODBCINI", (directory / "user.ini").c_str(), 1);
  }
  static void TearDownTestSuite() { fs::remove_all(directory); }

  SQLRETURN connect(const char* name) {
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_environment));
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &m_connection));
    void* bypass = reinterpret_cast<void*>(3);
    EXPECT_EQ(SQL_SUCCESS, SQLSetConnectAttr(m_connection, 2466, bypass, SQL_IS_UINTEGER));
    return SQLConnect(m_connection, name, SQL_NTS, "", SQL_NTS, "", SQL_NTS);
  }

  /// In the order of the core.
  void freeHandles() {
    EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_ENV, m_environment));
    EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_DBC, m_connection));
  }

  /// "NAME=value NAME=value" a row, a line each; what was cut ends with "...".
  std::string query(const std::string& sql) {
    SQLHANDLE statement;
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &statement));
    std::string result;
    if (!succeeded(SQLExecDirect(statement, sql.c_str(), SQL_NTS))) {
      result = "refused: " + report(SQL_HANDLE_STMT, statement);
    }
    while (succeeded(SQLFetch(statement))) {
      result += (result.empty() ? "" : "\n") + row(statement);
    }
    EXPECT_EQ(SQL_SUCCESS, SQLFreeHandle(SQL_HANDLE_STMT, statement));
    return result;
  }

  static std::string row(SQLHANDLE statement) {
    std::string result;
    short columns;
    EXPECT_EQ(SQL_SUCCESS, SQLNumResultCols(statement, &columns));
    for (unsigned short column = 1; column <= columns; ++column) {
      char name[128], value[128];
      short length, type, digits, nullable;
      unsigned long size;
      long indicator;
      SQLDescribeCol(statement, column, name, 128, &length, &type, &size, &digits, &nullable);
      const SQLRETURN code = SQLGetData(statement, column, SQL_C_CHAR, value, 128, &indicator);
      result += (column == 1 ? "" : " ") + std::string(name) + "=" + (indicator == -1 ? "NULL" : value);
      result += code == SQL_SUCCESS_WITH_INFO ? "..." : "";
    }
    return result;
  }

  SQLHANDLE m_environment = SQL_NULL_HANDLE;
  SQLHANDLE m_connection = SQL_NULL_HANDLE;
};

TEST_F(Sqlcli, ValuesAndNamesArriveAsTheProductGivesThem) {
  ASSERT_EQ(SQL_SUCCESS, connect("GOOD"));
  const std::string x126(126, 'x');
  EXPECT_EQ("", query("create table t(Id integer, \"quoted\" char(6))"));
  EXPECT_EQ("", query("insert into t values (1, 'ab    '), (2, null)"));
  const struct {
    std::string sql, expected;
  } rows[] = {
      {"select * from t order by id", "ID=1 QUOTED=ab    \nID=2 QUOTED=NULL"},
      {"select \"quoted\", id as \"Id\", id as b from t where Id=1", "quoted=ab     Id=1 B=1"},
      {"select 1 as a, -9223372036854775808 as b, 1.50 as c, '' as d, null as e, x'00ff' as f, true as g",
       "A=1 B=-9223372036854775808 C=1.5 D= E=NULL F=X'00FF' G=1"},
      {"select date('2024-02-29') as d, 'two words' as w, count(1)", "D=2024-02-29 W=two words COUNT(1)=1"},
      {"select 'Grüße, 世界 😀' as \"schöner Name\", 1 as größe", "schöner Name=Grüße, 世界 😀 GRößE=1"},
      {"select '" + x126 + "y' as v", "V=" + x126 + "y"},
      {"select '" + x126 + "yz' as v", "V=" + x126 + "y..."},
      {"select '" + x126 + "é' as v", "V=" + x126 + "..."},
      {"select 1 as \"" + x126 + "é\"", x126 + "=1"},
      {"select 1 where 1=0", ""},
      {"select name from table(pragma_table_info('t')) where name like 'q%'", "NAME=quoted"},
      {"select value from table ( json_each('[1,2]') ) j", "VALUE=1\nVALUE=2"},
      {"selct", "refused: [SQLite]near \"selct\": syntax error (1)\n100"},
      {"select 'after a failure' as a", "A=after a failure"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.expected, query(row.sql)) << row.sql;
  }
  SQLHANDLE tables;
  SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &tables);
  EXPECT_EQ(SQL_SUCCESS, SQLTables(tables, nullptr, 0, nullptr, 0, nullptr, 0, "TABLE", SQL_NTS));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(tables));
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(tables));
  freeHandles();  // with a connection open and a statement left over
}

TEST_F(Sqlcli, FailedConnectSaysWhy) {
  const std::string manager = "[unixODBC][Driver Manager]";
  for (const auto& [name, expected] : {
           std::pair{"MISSING", manager + "Data source name not found and no default driver specified\n100"},
           std::pair{"BAD", std::string("[unixODBC][SQLite]connect failed\n100")},
       }) {
    EXPECT_EQ(SQL_ERROR, connect(name)) << name;
    EXPECT_EQ(expected, report(SQL_HANDLE_DBC, m_connection)) << name;
    SQLHANDLE statement = 1;
    EXPECT_EQ(SQL_ERROR, SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &statement)) << name;
    EXPECT_EQ(manager + "Connection not open\n100", report(SQL_HANDLE_STMT, statement)) << name;
    freeHandles();
  }
}

/// What the functions of connections and statements say to a handle.
std::set<SQLRETURN> answers(SQLHANDLE handle) {
  char text[128];
  short word;
  long number;
  unsigned long size;
  return {SQLConnect(handle, "GOOD", SQL_NTS, "", SQL_NTS, "", SQL_NTS),
          SQLSetConnectAttr(handle, 2466, nullptr, SQL_IS_UINTEGER),
          SQLDisconnect(handle),
          SQLExecDirect(handle, "select 1", SQL_NTS),
          SQLTables(handle, nullptr, 0, nullptr, 0, nullptr, 0, "TABLE", SQL_NTS),
          SQLNumResultCols(handle, &word),
          SQLDescribeCol(handle, 1, text, 128, &word, &word, &size, &word, &word),
          SQLFetch(handle),
          SQLGetData(handle, 1, SQL_C_CHAR, text, 128, &number),
          SQLFreeHandle(SQL_HANDLE_STMT, handle),
          SQLFreeHandle(4, handle)};
}

TEST_F(Sqlcli, HandlesThatAreNotAliveAreRefused) {
  ASSERT_EQ(SQL_SUCCESS, connect("GOOD"));
  SQLHANDLE freed, left = 0, none;
  SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &freed);
  SQLFreeHandle(SQL_HANDLE_STMT, freed);
  int count = 0;
  while (count < 5000 && SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &none) == SQL_SUCCESS) {
    left = none;
    ++count;
  }
  EXPECT_EQ(4094, count);
  EXPECT_EQ("Too many handles are in use\n100", report(SQL_HANDLE_STMT, none));
  EXPECT_EQ(std::set{SQL_INVALID_HANDLE}, answers(freed));  // though its slot is in use
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLAllocHandle(SQL_HANDLE_STMT, m_environment, &none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_ENV, m_connection));
  freeHandles();
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &none));
  EXPECT_EQ(SQL_NULL_HANDLE, none);
  for (const SQLHANDLE handle :
       {SQL_NULL_HANDLE, -1, 3, 0x7FFFFFFF, freed, left, m_connection, m_environment}) {
    EXPECT_EQ(std::set{SQL_INVALID_HANDLE}, answers(handle)) << handle;
    for (short type = 0; type <= 4; ++type) {
      EXPECT_EQ("-2", report(type, handle)) << handle << " " << type;
    }
  }
}

TEST_F(Sqlcli, LevelIsThatOfTheConnectionOpenedLast) {
  const auto level = [] {
    sqleLevelInfo info;
    EXPECT_EQ(0, sqleGetLevelInfo(SQLE_LEVEL_VERSION, &info));
    return std::string(info.codeRelease) + "|" + info.version + "|" + info.buildLevel + "|" + info.fix + "|" +
           std::to_string(info.fixPack);
  };
  EXPECT_EQ("||||0", level());
  ASSERT_EQ(SQL_SUCCESS, connect("GOOD"));
  EXPECT_EQ(nullptr, dlsym(RTLD_DEFAULT, "SQLGetData"));  // or drivers call ours instead of their own
  EXPECT_THAT(level(), testing::MatchesRegex("SQLite ([0-9.]+)\\|[0-9.]+\\|sqlite3odbc.so [0-9.]+\\|\\|0"));
  EXPECT_EQ(SQL_SUCCESS, SQLDisconnect(m_connection));
  EXPECT_EQ("||||0", level());
  freeHandles();
}

TEST_F(Sqlcli, DirectoryListsEachDataSourceOnce) {
  katoDbDirOpenScanStruct first{}, second{};
  sqlca status{};
  EXPECT_EQ(0, katoDbDirOpenScan(KATO_DB_DIR_VERSION, &first, &status));
  EXPECT_EQ(0, katoDbDirOpenScan(KATO_DB_DIR_VERSION, &second, &status));
  katoDbDirNextEntryStruct next{first.handle, nullptr};
  std::string names = std::to_string(first.dbEntries);
  while (katoDbDirGetNextEntry(KATO_DB_DIR_VERSION, &next, &status) == 0) {
    names += std::string(" ") + next.entry->alias;
  }
  EXPECT_EQ("3 MINE good BAD", names);
  for (katoDbDirCloseScanStruct close : {katoDbDirCloseScanStruct{first.handle}, {second.handle}}) {
    EXPECT_EQ(0, katoDbDirCloseScan(KATO_DB_DIR_VERSION, &close, &status) + status.sqlcode);
    EXPECT_NE(0, katoDbDirCloseScan(KATO_DB_DIR_VERSION, &close, &status));
  }
  EXPECT_NE(0, katoDbDirGetNextEntry(KATO_DB_DIR_VERSION, &next, &status));
  EXPECT_GT(0, status.sqlcode);
}

/// Runs in a process of its own, before whose start the library was hidden.
[[noreturn]] void runWithoutManager() {
  SQLHANDLE environment = 1;
  const SQLRETURN code = SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
  katoDbDirOpenScanStruct scan{nullptr, 1, 1};
  sqlca status{};
  const int open = katoDbDirOpenScan(KATO_DB_DIR_VERSION, &scan, &status);
  std::cerr << code << " " << environment << " " << report(SQL_HANDLE_ENV, environment) << " " << open << " "
            << scan.dbEntries << " " << status.sqlcode << "\n";
  fs::remove_all(directory);
  std::exit(7);
}

TEST_F(Sqlcli, MissingManagerIsANormalDiagnostic) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  std::ofstream(directory / "libodbc.so.2");
  setenv("LD_LIBRARY_PATH", directory.c_str(), 1);
  EXPECT_EXIT(
      runWithoutManager(), testing::ExitedWithCode(7),
      "^-1 0 libodbc.so.2, the ODBC driver manager, cannot be used: install unixODBC [^\n]*\n100 -1 0 -1\n$");
  unsetenv("LD_LIBRARY_PATH");
}

}  // namespace
