#pragma once
/// Lines of cells that stand below each other. They are kept until a thousand have come, so that columns are
/// as wide as they have to be; a column never gets narrower again.

#include <vector>

#include "tarn/document/tarn_document_shown.h"

namespace tarn {

class Console;

class Columns {
 public:
  explicit Columns(Console& console) : m_console(console) {}
  Columns(const Columns&) = delete;
  Columns& operator=(const Columns&) = delete;
  /// Prints what is kept.
  ~Columns() { print(); }

  /// The last cell is not filled up.
  void row(std::vector<Shown> cells);
  /// A line that has no columns, below the row before.
  void line(Shown text);

 private:
  struct Row {
    std::vector<Shown> cells;
    std::vector<Shown> below;
  };

  void print();

  Console& m_console;
  std::vector<Row> m_rows;
  std::vector<std::size_t> m_widths;
};

}  // namespace tarn
