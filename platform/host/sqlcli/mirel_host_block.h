#pragma once
/// Rows of a result, fetched in blocks and handed out one at a time.
///
/// A block saves the calls to the driver manager and the driver that every value costs. Nothing else may
/// show: a value that the driver cannot deliver with the block is read from its row by itself, and fails by
/// itself.

#include <memory>

#include "platform/host/sqlcli/mirel_host_odbc.h"
#include "platform/sqlcli.h"

namespace host {

/// What SQLGetData is asked for.
struct ValueRequest {
  unsigned short column;
  short type;
  void* target;
  long size;
  long* length;

  bool isText() const { return type == SQL_C_CHAR && target != nullptr && size > 0; }
};

/// Serves what the core asks for, texts in 128 bytes; for anything else the driver is asked.
class RowBlock {
 public:
  /// Blocks for the rest of a statement's result, where `rows` are still to come; null where the driver takes
  /// no part in it, or where blocks are not worth their while. The result is then read on as before.
  static std::unique_ptr<RowBlock> open(OdbcHandle statement, long rows);

  /// As SQLFetch.
  SQLRETURN fetch();

  /// Delivers a value of the row fetched last. False where the driver has to be asked for it, because it did
  /// not come with the block, or something of its row did not.
  bool serve(const ValueRequest& request);

  /// Puts the driver on the row fetched last, to be asked for its values; false where it cannot.
  bool position();

  /// Makes the statement one again whose rows come one at a time.
  void close();

 private:
  static constexpr std::size_t kTextSize = 128;

  /// A value as the driver writes it. The driver finds the cells of a row side by side, so that it does not
  /// matter how wide it writes the length.
  struct Cell {
    long length;
    char text[kTextSize];
  };

  RowBlock(OdbcHandle statement, std::size_t columns, std::size_t rows);
  bool bind();
  void refill();
  bool isThere();
  static void empty(Cell& cell);
  static bool isShort(const Cell& cell);
  bool has(const ValueRequest& request) const;
  const Cell& cell(unsigned short column) const { return m_cells[m_row * m_columns + column - 1]; }

  OdbcHandle m_statement;
  std::size_t m_columns;
  std::size_t m_rows;     // of a full block
  std::size_t m_row = 0;  // the one fetched last
  std::size_t m_count = 0;
  SQLRETURN m_end = SQL_SUCCESS;  // what comes behind the block; success: another one
  unsigned long m_fetched = 0;    // the driver writes it
  std::unique_ptr<Cell[]> m_cells;
  std::unique_ptr<unsigned short[]> m_status;
};

}  // namespace host
