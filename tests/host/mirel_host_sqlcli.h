#pragma once
/// A connection through the adapter, made and used as the core does it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/sqlcli.h"

/// The diagnostic report as the core takes it.
inline std::string report(short type, SQLHANDLE handle) {
  std::string all;
  SQLRETURN code = SQL_SUCCESS;
  for (short record = 1; code == SQL_SUCCESS; ++record) {
    char state[6], message[256];
    int nativeError;
    short length;
    code = SQLGetDiagRec(type, handle, record, state, &nativeError, message, sizeof message, &length);
    all += sqlSucceeded(code) ? message + std::string("\n") : "";
  }
  return all + std::to_string(code);
}

class Connected : public testing::Test {
 protected:
  Connected() { setenv("ODBCSYSINI", MIREL_HOST "/odbc", 1); }

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

  /// "NAME=value NAME=value" a row, a line each; "..." behind a value that was cut, "?" for one that cannot
  /// be read. With `block`, from the first row on in blocks of so many rows, whatever the driver tells.
  std::string query(const std::string& sql, long block = 0) {
    SQLHANDLE statement;
    EXPECT_EQ(SQL_SUCCESS, SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &statement));
    std::string result;
    if (!sqlSucceeded(SQLExecDirect(statement, sql.c_str(), SQL_NTS)))
      result = "refused: " + report(SQL_HANDLE_STMT, statement);
    if (block > 0) {
      auto* record = host::handles().find<host::Statement>(statement);
      record->block = host::RowBlock::open(record->native, block);
      record->fetches = 2;
    }
    for (m_end = SQLFetch(statement); sqlSucceeded(m_end); m_end = SQLFetch(statement))
      result += (result.empty() ? "" : "\n") + row(statement);
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
      result += (column == 1 ? "" : " ") + std::string(name) + "=";
      result += !sqlSucceeded(code) ? "?" : indicator == -1 ? "NULL" : value;
      result += code == SQL_SUCCESS_WITH_INFO ? "..." : "";
    }
    return result;
  }

  SQLHANDLE m_environment = SQL_NULL_HANDLE;
  SQLHANDLE m_connection = SQL_NULL_HANDLE;
  SQLRETURN m_end = SQL_SUCCESS;  ///< what the last fetch of a query answered
};
