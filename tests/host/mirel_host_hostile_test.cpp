// The adapter on the worst of driver managers, which stands in for the real one by the run path.
#include <gtest/gtest.h>

#include "platform/admin.h"
#include "platform/sqlcli.h"

namespace {

struct HostileManager : testing::Test {
  HostileManager() {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    EXPECT_EQ(SQL_SUCCESS, SQLSetConnectAttr(connection, 2466, nullptr, SQL_IS_UINTEGER));
    EXPECT_EQ(SQL_SUCCESS_WITH_INFO, SQLConnect(connection, "ANY", SQL_NTS, "", SQL_NTS, "", SQL_NTS));
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement));
  }
  ~HostileManager() override {
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
    EXPECT_EQ(SQL_ERROR, SQLFreeHandle(SQL_HANDLE_DBC, connection));
    EXPECT_EQ(SQL_INVALID_HANDLE, SQLFreeHandle(SQL_HANDLE_STMT, statement));
  }

  SQLHANDLE environment, connection, statement;
};

TEST_F(HostileManager, ValuesAreGoodTexts) {
  const struct {
    unsigned short column;
    SQLRETURN code;
    const char* text;
    long indicator;
  } rows[] = {
      {1, SQL_SUCCESS, "", 0},
      {2, SQL_SUCCESS, "abc", 3},
      {3, SQL_SUCCESS_WITH_INFO, "abcdefg", 8},
      {4, SQL_SUCCESS_WITH_INFO, "abcdef", -4},
      {5, SQL_SUCCESS, "", SQL_NULL_DATA},
      {6, SQL_SUCCESS, "abcdef\xC3", 7},
      {7, SQL_SUCCESS_WITH_INFO, "abcdef", 7},
      {8, SQL_ERROR, "", 0},
  };
  for (const auto& row : rows) {
    char text[] = "???????";
    long indicator = 99;
    EXPECT_EQ(row.code, SQLGetData(statement, row.column, SQL_C_CHAR, text, sizeof text, &indicator))
        << row.column;
    EXPECT_STREQ(row.text, text) << row.column;
    EXPECT_EQ(row.indicator, indicator) << row.column;
  }
}

TEST_F(HostileManager, NamesAndCountsAreGood) {
  short word = 99;
  EXPECT_EQ(SQL_ERROR, SQLNumResultCols(statement, &word));
  std::string names = std::to_string(word);
  for (unsigned short column = 1; column <= 3; ++column) {
    char name[] = "???????";
    unsigned long size;
    const SQLRETURN code = SQLDescribeCol(statement, column, name, 8, &word, &word, &size, &word, &word);
    names += std::string(" ") + name + " " + std::to_string(code);
  }
  EXPECT_EQ("0 CCCCCCC 1  1  -1", names);
}

TEST_F(HostileManager, DiagnosticsEndAndTakeOneLineEach) {
  std::string texts;
  short record = 0;
  for (SQLRETURN code = SQL_SUCCESS; code != SQL_NO_DATA && record < 1000;) {
    char state[6], message[8];
    int nativeError;
    short length;
    code = SQLGetDiagRec(SQL_HANDLE_STMT, statement, ++record, state, &nativeError, message, 8, &length);
    texts += record > 2 ? "" : message + std::string(" ") + std::to_string(code) + " ";
  }
  EXPECT_EQ("a b c 0 mmmmmmm 1 ", texts);
  EXPECT_EQ(65, record);
}

TEST_F(HostileManager, DirectoryAndLevelEnd) {
  katoDbDirOpenScanStruct scan{};
  EXPECT_EQ(0, katoDbDirOpenScan(KATO_DB_DIR_VERSION, &scan, nullptr));
  EXPECT_EQ(1, scan.dbEntries);
  katoDbDirNextEntryStruct next{scan.handle, nullptr};
  EXPECT_EQ(0, katoDbDirGetNextEntry(KATO_DB_DIR_VERSION, &next, nullptr));
  EXPECT_EQ(std::string(255, 'n'), next.entry->alias);
  sqleLevelInfo level;
  EXPECT_EQ(0, sqleGetLevelInfo(SQLE_LEVEL_VERSION, &level));
  EXPECT_EQ(std::string(103, 'i'), level.codeRelease);
  EXPECT_EQ(std::string(31, 'i'), level.version);
}

}  // namespace
