#include "db/mirel_db_resultset.h"

#include <cstring>

#include "json/mirel_json_value.h"

namespace {

constexpr unsigned long kBufferSize = 128;

bool succeeded(SQLRETURN code) {
  return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

/// The length of a buffer's text up to its first blank.
unsigned long firstWord(const char* buffer) {
  const unsigned long length = strnlen(buffer, kBufferSize);
  const void* blank = memchr(buffer, ' ', length);
  return blank == nullptr ? length : static_cast<unsigned long>(static_cast<const char*>(blank) - buffer);
}

}  // namespace

ResultSet::ResultSet(SQLHANDLE statement) : m_stmt(statement) {}

void ResultSet::getCols() {
  SQLNumResultCols(m_stmt, &m_cols);
  for (int column = 1; column <= m_cols; ++column) {
    char name[kBufferSize] = {};
    short nameLength = 0;
    short dataType = 0;
    unsigned long columnSize = 0;
    short decimalDigits = 0;
    short nullable = 0;
    SQLDescribeCol(m_stmt, static_cast<unsigned short>(column), name, kBufferSize, &nameLength, &dataType,
                   &columnSize, &decimalDigits, &nullable);
    m_names.emplace_back(name, kBufferSize);
    m_sizes.push_back(static_cast<unsigned int>(columnSize));
  }
}

ObjectValue* ResultSet::fetch() {
  auto* row = new ObjectValue("");
  if (!succeeded(SQLFetch(m_stmt))) {
    m_done = true;
    return row;
  }
  ++m_rows;
  for (int column = 1; column <= m_cols; ++column)
    addColumn(row, static_cast<unsigned short>(column));
  return row;
}

void ResultSet::addColumn(ObjectValue* row, unsigned short column) const {
  char buffer[kBufferSize];
  buffer[0] = '\0';
  long indicator = 0;
  if (!succeeded(SQLGetData(m_stmt, column, SQL_C_CHAR, buffer, kBufferSize, &indicator)))
    return;
  // Drivers differ in the width of the indicator; its low 32 bits are what counts.
  const bool isNull = static_cast<int>(indicator) == SQL_NULL_DATA;
  row->addValue(new KeyValuePair(m_names[column - 1u],
                                 isNull ? mirel_string("NULL") : mirel_string(buffer, firstWord(buffer))));
}
