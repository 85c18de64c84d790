// Result sets of the SQL call-level interface: what the drivers answer, made safe to rely on.
//
// A text is terminated whatever the driver did, and a text that was cut to the buffer never ends inside a
// UTF-8 character: a reader gets as many whole characters as fit. What a cut dropped is not offered again.

#include <algorithm>
#include <cstring>

#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"
#include "platform/sqlcli.h"

using host::odbc;
using host::Statement;

namespace {

/// Makes a fetched text good. `*length` may be anything: some drivers do not know the length (below 0), some
/// write 32 bits of it.
SQLRETURN finishText(SQLRETURN code, char* text, long size, long* length) {
  if (static_cast<int>(*length) == SQL_NULL_DATA) {
    *length = SQL_NULL_DATA;
    *text = '\0';
    return code;
  }
  text[size - 1] = '\0';
  const bool fits = *length >= 0 && *length < size;
  if (code == SQL_SUCCESS && fits) {
    return code;
  }
  text[host::wholeCharacters(text)] = '\0';
  return *length >= size ? SQL_SUCCESS_WITH_INFO : code;
}

/// The product's spelling of a column name.
void spellName(const Statement& statement, char* name, std::size_t length) {
  if (!statement.connection->engine.reportsUpperCase && !statement.quotedNames.include({name, length})) {
    std::transform(name, name + length, name,
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  }
}

}  // namespace

SQLRETURN SQLNumResultCols(SQLHANDLE handle, short* count) {
  *count = 0;
  const Statement* statement = host::handles().find<Statement>(handle);
  return statement != nullptr ? odbc().numResultCols(statement->native, count) : SQL_INVALID_HANDLE;
}

SQLRETURN SQLDescribeCol(SQLHANDLE handle, unsigned short column, char* name, short nameSize,
                         short* nameLength, short* dataType, unsigned long* columnSize, short* decimalDigits,
                         short* nullable) {
  const auto size = static_cast<std::size_t>(std::max<short>(nameSize, 0));
  std::fill_n(name, size, '\0');
  const Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  const SQLRETURN code = odbc().describeCol(statement->native, column, host::odbcText(name), nameSize,
                                            nameLength, dataType, columnSize, decimalDigits, nullable);
  if (size == 0 || !sqlSucceeded(code)) {
    return code;
  }
  name[size - 1] = '\0';
  const std::size_t length = host::wholeCharacters(name);
  name[length] = '\0';
  spellName(*statement, name, length);
  return *nameLength >= nameSize ? SQL_SUCCESS_WITH_INFO : code;
}

SQLRETURN SQLFetch(SQLHANDLE handle) {
  const Statement* statement = host::handles().find<Statement>(handle);
  return statement != nullptr ? odbc().fetch(statement->native) : SQL_INVALID_HANDLE;
}

SQLRETURN SQLGetData(SQLHANDLE handle, unsigned short column, short targetType, void* target, long targetSize,
                     long* indicator) {
  const Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  const bool isText = targetType == SQL_C_CHAR && target != nullptr && targetSize > 0;
  if (isText) {
    std::memset(target, 0, static_cast<std::size_t>(targetSize));  // drivers may leave it as it is
  }
  *indicator = 0;
  const SQLRETURN code = odbc().getData(statement->native, column, targetType, target, targetSize, indicator);
  return isText && sqlSucceeded(code) ? finishText(code, static_cast<char*>(target), targetSize, indicator)
                                      : code;
}
