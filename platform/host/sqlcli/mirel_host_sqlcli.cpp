// Handles, connections and statements of the SQL call-level interface, on the ODBC driver manager.
//
// The functions bear the names that the manager and every driver use, too. They must stay hidden symbols,
// or drivers would call ours instead of their own.

#include <cstring>
#include <new>

#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/sqlcli.h"

using host::Connection;
using host::odbc;
using host::odbcText;
using host::Statement;

namespace {

/// Takes in a new text: what its column names will have to be, and the form that the engine understands.
/// Nothing when the text can stand as it is; throws std::bad_alloc.
std::optional<std::string> prepare(Statement* statement, std::string_view text) {
  const host::Dialect& dialect = *statement->connection->engine.dialect;
  statement->quotedNames = host::QuotedNames(text, dialect);
  return host::adaptStatement(text, dialect);
}

SQLRETURN execute(Statement* statement, const char* text, int length) {
  return statement->noted(odbc().execDirect(statement->native, odbcText(text), length));
}

}  // namespace

SQLRETURN SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output) {
  if (output == nullptr) {
    return SQL_ERROR;
  }
  switch (type) {
    case SQL_HANDLE_ENV:
      return host::allocateEnvironment(output);
    case SQL_HANDLE_DBC:
      return host::allocateConnection(input, output);
    case SQL_HANDLE_STMT:
      return host::allocateStatement(input, output);
    default:
      *output = SQL_NULL_HANDLE;
      return SQL_ERROR;
  }
}

SQLRETURN SQLFreeHandle(short type, SQLHANDLE handle) {
  switch (type) {
    case SQL_HANDLE_ENV:
      return host::freeEnvironment(handle);
    case SQL_HANDLE_DBC:
      return host::freeConnection(handle);
    case SQL_HANDLE_STMT:
      return host::freeStatement(handle);
    default:
      return SQL_INVALID_HANDLE;
  }
}

SQLRETURN SQLSetConnectAttr(SQLHANDLE handle, int attribute, void* value, int length) {
  const Connection* connection = host::handles().find<Connection>(handle);
  if (connection == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  const SQLRETURN code = odbc().setConnectAttr(connection->native, attribute, value, length);
  // An engine without a query patroller has nothing to bypass, and its driver may say so.
  return attribute == SQL_ATTR_QUERY_PATROLLER_BYPASS ? SQL_SUCCESS : code;
}

SQLRETURN SQLConnect(SQLHANDLE handle, const char* dataSource, short dataSourceLength, const char* user,
                     short userLength, const char* password, short passwordLength) {
  Connection* connection = host::handles().find<Connection>(handle);
  return connection != nullptr ? host::openSession(connection, dataSource, dataSourceLength, user, userLength,
                                                   password, passwordLength)
                               : SQL_INVALID_HANDLE;
}

SQLRETURN SQLDisconnect(SQLHANDLE handle) {
  Connection* connection = host::handles().find<Connection>(handle);
  return connection != nullptr ? host::closeSession(connection) : SQL_INVALID_HANDLE;
}

SQLRETURN SQLExecDirect(SQLHANDLE handle, const char* text, int length) {
  Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  statement->complaint = nullptr;
  statement->leaveResult();
  if (text == nullptr || (length < 0 && length != SQL_NTS)) {
    return execute(statement, text, length);  // the manager says what is wrong
  }
  const std::size_t size = length == SQL_NTS ? std::strlen(text) : static_cast<std::size_t>(length);
  try {
    const std::optional<std::string> prepared = prepare(statement, {text, size});
    if (!prepared) {
      return execute(statement, text, length);
    }
    return execute(statement, prepared->c_str(),
                   length == SQL_NTS ? length : static_cast<int>(prepared->size()));
  } catch (const std::bad_alloc&) {
    statement->complaint = &host::kOutOfMemory;
    return SQL_ERROR;
  }
}

SQLRETURN SQLTables(SQLHANDLE handle, const char* catalog, short catalogLength, const char* schema,
                    short schemaLength, const char* table, short tableLength, const char* type,
                    short typeLength) {
  Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  statement->complaint = nullptr;
  statement->leaveResult();
  statement->quotedNames = {};
  return statement->noted(odbc().tables(statement->native, odbcText(catalog), catalogLength, odbcText(schema),
                                        schemaLength, odbcText(table), tableLength, odbcText(type),
                                        typeLength));
}
