#include "tests/host/mirel_host_sqlcli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/admin.h"
#include "tests/cases.h"

namespace {

/// The adapter on real SQLite data sources: GOOD and BAD (a directory) of the system, MINE and good of the
/// user.
class Sqlcli : public Connected {
 protected:
  Sqlcli() { setenv("ODBCINI", MIREL_HOST "/odbc/user.ini", 1); }
};

TEST_F(Sqlcli, ValuesAndNamesArriveAsTheProductGivesThem) {
  ASSERT_EQ(SQL_SUCCESS, connect("GOOD"));
  EXPECT_EQ("", query("create table t(Id integer, \"quoted\" char(6))"));
  EXPECT_EQ("", query("insert into t values (1, 'ab    '), (2, null)"));
  const auto bothWays = [this](const Arguments& a) {
    EXPECT_EQ(query(a[0]), query(a[0], 3)) << "in blocks";
    return query(a[0]);
  };
  expectCases(MIREL_HOST "/sqlite_cases.txt", {{"query", bothWays}});
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
