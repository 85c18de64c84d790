#include "platform/host/sqlcli/mirel_host_block.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace host {

namespace {

/// What a block takes at most: it stays in the processor's cache.
constexpr std::size_t kMostBytes = 1 << 17;

/// No driver writes this length, nor half of it.
constexpr long kUnwritten = std::numeric_limits<long>::min() | (1L << 31);

void* asPointer(std::size_t number) {
  return reinterpret_cast<void*>(number);
}

/// Most values are that short, and take a quarter of the copying.
constexpr long kShort = 32;

/// A length as a driver wrote it over `kUnwritten`, be it in 64 bits or 32.
long lengthOf(long written) {
  return (written >> 32) == (kUnwritten >> 32) ? static_cast<int>(written) : written;
}

}  // namespace

std::unique_ptr<RowBlock> RowBlock::open(OdbcHandle statement, long rows) {
  short columns = 0;
  if (rows < 2 || !sqlSucceeded(odbc().numResultCols(statement, &columns)) || columns < 1) {
    return nullptr;
  }
  const auto width = static_cast<std::size_t>(columns);
  const std::size_t most = kMostBytes / (width * sizeof(Cell));
  if (most < 2) {
    return nullptr;
  }
  std::unique_ptr<RowBlock> block(
      new (std::nothrow) RowBlock(statement, width, std::min(static_cast<std::size_t>(rows), most)));
  if (block != nullptr && !block->bind()) {
    block->close();
    block.reset();
  }
  return block;
}

RowBlock::RowBlock(OdbcHandle statement, std::size_t columns, std::size_t rows)
    : m_statement(statement),
      m_columns(columns),
      m_rows(rows),
      m_cells(new (std::nothrow) Cell[columns * rows]()),
      m_status(new (std::nothrow) unsigned short[rows]) {}

/// The number of rows comes last: until then nothing has changed for the driver. One that makes another
/// number of it says so with SQL_SUCCESS_WITH_INFO.
bool RowBlock::bind() {
  if (m_cells == nullptr || m_status == nullptr) {
    return false;
  }
  for (std::size_t column = 0; column < m_columns; ++column) {
    Cell& first = m_cells[column];
    if (!sqlSucceeded(odbc().bindCol(m_statement, static_cast<unsigned short>(column + 1), SQL_C_CHAR,
                                     first.text, sizeof first.text, &first.length))) {
      return false;
    }
  }
  const auto set = [this](int attribute, void* value) {
    return odbc().setStmtAttr(m_statement, attribute, value, 0) == SQL_SUCCESS;
  };
  return set(kOdbcRowBindType, asPointer(m_columns * sizeof(Cell))) && set(kOdbcRowStatus, m_status.get()) &&
         set(kOdbcRowsFetched, &m_fetched) && set(kOdbcRowArraySize, asPointer(m_rows));
}

void RowBlock::close() {
  odbc().freeStmt(m_statement, kOdbcUnbind);
  odbc().setStmtAttr(m_statement, kOdbcRowArraySize, asPointer(1), 0);
  odbc().setStmtAttr(m_statement, kOdbcRowsFetched, nullptr, 0);
  odbc().setStmtAttr(m_statement, kOdbcRowStatus, nullptr, 0);
}

SQLRETURN RowBlock::fetch() {
  if (++m_row >= m_count && m_end == SQL_SUCCESS) {
    refill();
  }
  if (m_row >= m_count) {
    return std::exchange(m_end, SQL_SUCCESS);
  }
  return isThere() ? SQL_SUCCESS : SQL_ERROR;
}

/// Drivers may leave a text as it is, or without its end: so every byte that one wrote becomes a NUL again.
void RowBlock::empty(Cell& cell) {
  if (isShort(cell)) {
    std::memset(cell.text, 0, kShort);
  } else {
    std::memset(cell.text, 0, sizeof cell.text);
  }
  cell.length = kUnwritten;
}

bool RowBlock::isShort(const Cell& cell) {
  const long length = lengthOf(cell.length);
  return length >= 0 && length < kShort && cell.text[length] == '\0';
}

void RowBlock::refill() {
  std::for_each_n(m_cells.get(), m_columns * m_rows, empty);
  std::fill_n(m_status.get(), m_rows, 0);
  m_fetched = 0;
  const SQLRETURN code = odbc().fetch(m_statement);
  m_row = 0;
  m_count = code == SQL_NO_DATA ? 0 : std::min<std::size_t>(m_fetched, m_rows);
  m_end = sqlSucceeded(code) ? SQL_SUCCESS : code;
}

bool RowBlock::position() {
  return sqlSucceeded(odbc().setPos(m_statement, m_row + 1, kOdbcPosition, kOdbcLockNoChange));
}

/// A row is when something of it is, or when it can be asked for its values.
bool RowBlock::isThere() {
  const Cell* const first = &cell(1);
  return std::any_of(first, first + m_columns, [](const Cell& one) { return one.length != kUnwritten; }) ||
         position();
}

bool RowBlock::serve(const ValueRequest& request) {
  if (!has(request) || (m_status[m_row] == kOdbcRowError && position())) {
    return false;
  }
  const Cell& from = cell(request.column);
  if (isShort(from)) {
    std::memcpy(request.target, from.text, kShort);
  } else {
    std::memcpy(request.target, from.text, sizeof from.text);
  }
  *request.length = lengthOf(from.length);
  return true;
}

bool RowBlock::has(const ValueRequest& request) const {
  return m_row < m_count && request.column >= 1 && request.column <= m_columns && request.isText() &&
         request.size == sizeof(Cell::text) && cell(request.column).length != kUnwritten;
}

}  // namespace host
