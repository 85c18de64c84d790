// Result sets of the SQL call-level interface: what the drivers answer, made safe to rely on.
//
// Rows after the first one come in blocks where the driver can. A text is terminated whatever the driver did,
// and a text that was cut to the buffer never ends inside a UTF-8 character: a reader gets as many whole
// characters as fit. What a cut dropped is not offered again.

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"
#include "platform/sqlcli.h"

using host::odbc;
using host::Statement;
using host::ValueRequest;

namespace {

/// Blocks for the rows behind the first one, where the driver knows how many there are. It holds the whole
/// result then; another one might fail at a row of the block that nobody has asked for yet, and lose those
/// before it.
std::unique_ptr<host::RowBlock> openBlock(const Statement& statement) {
  long rows = 0;
  const bool isKnown =
      statement.connection->engine.givesBlocks && sqlSucceeded(odbc().rowCount(statement.native, &rows));
  return isKnown ? host::RowBlock::open(statement.native, rows - 1) : nullptr;
}

/// The driver's own answer, one value by itself.
SQLRETURN ask(Statement* statement, const ValueRequest& request) {
  if (request.isText()) {
    std::memset(request.target, 0, static_cast<std::size_t>(request.size));  // drivers may leave it as it is
  }
  *request.length = 0;
  return statement->noted(odbc().getData(statement->native, request.column, request.type, request.target,
                                         request.size, request.length));
}

/// Makes a fetched text good; the code tells whether it was cut. Some drivers write 32 bits of the length,
/// some do not know it (below 0): then a text that fills its buffer counts as cut.
SQLRETURN finishText(const ValueRequest& request) {
  char* const text = static_cast<char*>(request.target);
  const auto size = static_cast<std::size_t>(request.size);
  long& length = *request.length;
  length = (length >> 32) == 0 ? static_cast<int>(length) : length;
  if (static_cast<int>(length) == SQL_NULL_DATA) {
    length = SQL_NULL_DATA;
    *text = '\0';
    return SQL_SUCCESS;
  }
  text[size - 1] = '\0';
  const bool fits = length < 0 ? std::strlen(text) < size - 1 : length < request.size;
  if (!fits) {
    text[host::wholeCharacters(text)] = '\0';
  }
  return fits ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

/// Whether a column's name has more bytes than these. SQLite's driver tells the length of what arrived, so it
/// takes a larger buffer to see that.
bool isLonger(Statement* statement, unsigned short column, std::size_t length) {
  std::vector<char> name(length + 2);
  short told = 0;
  short type = 0;
  unsigned long columnSize = 0;
  short digits = 0;
  short nullable = 0;
  statement->noted(odbc().describeCol(statement->native, column, host::odbcText(name.data()),
                                      static_cast<short>(name.size()), &told, &type, &columnSize, &digits,
                                      &nullable));
  return name[length] != '\0';
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
  Statement* statement = host::handles().find<Statement>(handle);
  return statement != nullptr ? statement->noted(odbc().numResultCols(statement->native, count))
                              : SQL_INVALID_HANDLE;
}

SQLRETURN SQLDescribeCol(SQLHANDLE handle, unsigned short column, char* name, short nameSize,
                         short* nameLength, short* dataType, unsigned long* columnSize, short* decimalDigits,
                         short* nullable) {
  const auto size = static_cast<std::size_t>(std::max<short>(nameSize, 0));
  std::fill_n(name, size, '\0');
  Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  const SQLRETURN code =
      statement->noted(odbc().describeCol(statement->native, column, host::odbcText(name), nameSize,
                                          nameLength, dataType, columnSize, decimalDigits, nullable));
  if (size == 0 || !sqlSucceeded(code)) {
    return code;
  }
  name[size - 1] = '\0';
  std::size_t length = std::strlen(name);
  const bool isCut = *nameLength >= nameSize || (length == size - 1 && isLonger(statement, column, length));
  if (isCut) {
    length = host::wholeCharacters(name);
    name[length] = '\0';
  }
  spellName(*statement, name, length);
  return isCut ? SQL_SUCCESS_WITH_INFO : code;
}

SQLRETURN SQLFetch(SQLHANDLE handle) {
  Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  // The first row comes by itself, since most results have no other.
  if (statement->fetches < 2 && ++statement->fetches == 2) {
    statement->block = openBlock(*statement);
  }
  return statement->noted(statement->block != nullptr ? statement->block->fetch()
                                                      : odbc().fetch(statement->native));
}

SQLRETURN SQLGetData(SQLHANDLE handle, unsigned short column, short targetType, void* target, long targetSize,
                     long* indicator) {
  Statement* statement = host::handles().find<Statement>(handle);
  if (statement == nullptr) {
    return SQL_INVALID_HANDLE;
  }
  const ValueRequest request{column, targetType, target, targetSize, indicator};
  host::RowBlock* block = statement->block.get();
  if (block != nullptr && block->serve(request)) {
    return finishText(request);
  }
  const SQLRETURN code = block == nullptr || block->position() ? ask(statement, request) : SQL_ERROR;
  return request.isText() && sqlSucceeded(code) ? finishText(request) : code;
}
