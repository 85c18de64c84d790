#include "bench/mirel_bench_sql_bare.h"

#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <vector>

namespace {

/// The manager's function of a name, with the type that <sql.h> declares.
#define MANAGER(name) reinterpret_cast<decltype(&name)>(dlsym(manager(), #name))

void* manager() {
  static void* const library = dlopen("libodbc.so.2", RTLD_NOW | RTLD_LOCAL);
  return library;
}

SQLCHAR* characters(const char* text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text));
}

void appendEscaped(std::string* out, const char* value) {
  for (; *value != '\0' && *value != ' '; ++value) {
    if (*value == '"' || *value == '\\') {
      *out += '\\';
    }
    *out += *value;
  }
}

std::vector<std::string> columnNames(SQLHSTMT statement) {
  SQLSMALLINT columns = 0;
  MANAGER(SQLNumResultCols)(statement, &columns);
  std::vector<std::string> names;
  for (SQLSMALLINT column = 1; column <= columns; ++column) {
    char name[128] = "";
    MANAGER(SQLDescribeCol)
    (statement, static_cast<SQLUSMALLINT>(column), reinterpret_cast<SQLCHAR*>(name), sizeof name, nullptr,
     nullptr, nullptr, nullptr, nullptr);
    names.emplace_back(name);
  }
  return names;
}

std::string print(SQLHSTMT statement) {
  const auto fetch = MANAGER(SQLFetch);
  const auto getData = MANAGER(SQLGetData);
  const std::vector<std::string> names = columnNames(statement);
  std::string text = "[";
  while (SQL_SUCCEEDED(fetch(statement))) {
    text += text.size() == 1 ? "\n  {\n" : ",\n  {\n";
    for (std::size_t i = 0; i < names.size(); ++i) {
      char value[128] = "";
      SQLLEN indicator = 0;
      getData(statement, static_cast<SQLUSMALLINT>(i + 1), SQL_C_CHAR, value, sizeof value, &indicator);
      text += "    \"" + names[i] + "\": \"";
      appendEscaped(&text, indicator == SQL_NULL_DATA ? "NULL" : value);
      text += i + 1 < names.size() ? "\",\n" : "\"\n";
    }
    text += "  }";
  }
  return text + "\n]";
}

unsigned long drain(SQLHSTMT statement) {
  const auto fetch = MANAGER(SQLFetch);
  const auto getData = MANAGER(SQLGetData);
  const auto columns = static_cast<SQLUSMALLINT>(columnNames(statement).size());
  unsigned long rows = 0;
  for (; SQL_SUCCEEDED(fetch(statement)); ++rows) {
    for (SQLUSMALLINT column = 1; column <= columns; ++column) {
      char value[128];
      SQLLEN indicator = 0;
      getData(statement, column, SQL_C_CHAR, value, sizeof value, &indicator);
    }
  }
  return rows;
}

/// Runs the query and hands its statement to `use`; what that returns, or nothing when something fails.
template <class Use>
auto withRows(const char* dataSource, const std::string& query, Use use) {
  SQLHENV environment = nullptr;
  SQLHDBC connection = nullptr;
  SQLHSTMT statement = nullptr;
  decltype(use(statement)) result{};
  MANAGER(SQLAllocHandle)(SQL_HANDLE_ENV, nullptr, &environment);
  MANAGER(SQLSetEnvAttr)(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  MANAGER(SQLAllocHandle)(SQL_HANDLE_DBC, environment, &connection);
  if (SQL_SUCCEEDED(MANAGER(SQLConnect)(connection, characters(dataSource), SQL_NTS, characters(""), SQL_NTS,
                                        characters(""), SQL_NTS))) {
    MANAGER(SQLAllocHandle)(SQL_HANDLE_STMT, connection, &statement);
    if (SQL_SUCCEEDED(MANAGER(SQLExecDirect)(statement, characters(query.c_str()), SQL_NTS))) {
      result = use(statement);
    }
    MANAGER(SQLFreeHandle)(SQL_HANDLE_STMT, statement);
    MANAGER(SQLDisconnect)(connection);
  }
  MANAGER(SQLFreeHandle)(SQL_HANDLE_DBC, connection);
  MANAGER(SQLFreeHandle)(SQL_HANDLE_ENV, environment);
  return result;
}

}  // namespace

std::string bareRows(const char* dataSource, const std::string& query) {
  return withRows(dataSource, query, print);
}

unsigned long drainedRows(const char* dataSource, const std::string& query) {
  return withRows(dataSource, query, drain);
}
