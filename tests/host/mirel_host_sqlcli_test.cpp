#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/admin.h"
#include "platform/sqlcli.h"
#include "tests/cases.h"

namespace {

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
  Sqlcli() {
    setenv("ODBCSYSINI", MIREL_HOST "/odbc", 1);
    setenv("ODBCINI", MIREL_HOST "/odbc/user.ini", 1);
  }

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
  EXPECT_EQ("", query("create table t(Id integer, \"quoted\" char(6))"));
  EXPECT_EQ("", query("insert into t values (1, 'ab    '), (2, null)"));
  expectCases(MIREL_HOST "/sqlite_cases.txt", {{"query", [&](const Arguments& a) { return query(a[0]); }}});
  SQLHANDLE tables;
  SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &tables);
  EXPECT_EQ(SQL_SUCCESS, SQLTables(tables, nullptr, 0, nullptr, 0, nullptr, 0, "TABLE", SQL_NTS));
  EXPECT_EQ(SQL_SUCCESS, SQLFetch(tables));
  EXPECT_EQ(SQL_NO_DATA, SQLFetch(tables));
  freeHandles();  // with a connection open and a statement left over
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
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLAllocHandle(SQL_HANDLE_STMT, m_environment, &none));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_ENV, m_connection));
  EXPECT_EQ(SQL_INVALID_HANDLE, SQLFetch(freed));  // though its slot is in use
  freeHandles();
  for (const SQLHANDLE handle :
       {SQL_NULL_HANDLE, -1, 3, 0x7FFFFFFF, freed, left, m_connection, m_environment}) {
    long number;
    EXPECT_EQ(std::set{SQL_INVALID_HANDLE},
              (std::set{SQLConnect(handle, "GOOD", SQL_NTS, "", SQL_NTS, "", SQL_NTS), SQLDisconnect(handle),
                        SQLExecDirect(handle, "select 1", SQL_NTS), SQLFetch(handle),
                        SQLGetData(handle, 1, SQL_C_CHAR, &number, 8, &number),
                        SQLFreeHandle(SQL_HANDLE_STMT, handle)}))
        << handle;
    EXPECT_EQ("-2", report(SQL_HANDLE_STMT, handle)) << handle;
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

}  // namespace
