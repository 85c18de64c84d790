#include "db/mirel_db_resultset.h"

#include <cstring>

#include "common/mirel_common_eight.h"
#include "json/mirel_json_value.h"

namespace {

constexpr unsigned long kBufferSize = 128;

/// The length of a buffer's text up to its first blank.
unsigned long firstWord(const char* buffer) {
  for (unsigned long at = 0; at < kBufferSize; at += sizeof(eight::Eight)) {
    const eight::Eight characters = eight::load(buffer + at);
    const eight::Eight ends = eight::marks(characters, ' ') | eight::marks(characters, '\0');
    if (ends != 0) {
      return at + static_cast<unsigned long>(eight::before(ends));
    }
  }
  return kBufferSize;
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
    m_row.addKey(m_names.back());
    m_sizes.push_back(static_cast<unsigned int>(columnSize));
  }
}

ObjectValue* ResultSet::fetch() {
  if (!sqlSucceeded(SQLFetch(m_stmt))) {
    m_done = true;
    return new ObjectValue("");
  }
  ++m_rows;
  m_row.clear();
  for (int column = 1; column <= m_cols; ++column) {
    readColumn(static_cast<unsigned short>(column));
  }
  return new ObjectValue(m_row.folded());
}

void ResultSet::readColumn(unsigned short column) {
  char buffer[kBufferSize];
  buffer[0] = '\0';
  long indicator = 0;
  if (!sqlSucceeded(SQLGetData(m_stmt, column, SQL_C_CHAR, buffer, kBufferSize, &indicator))) {
    return;
  }
  // Drivers differ in the width of the indicator; its low 32 bits are what counts.
  if (static_cast<int>(indicator) == SQL_NULL_DATA) {
    memcpy(buffer, "NULL", sizeof "NULL");
  }
  m_row.add(column - 1u, buffer, firstWord(buffer));
}
