#pragma once
/// Lines of cells that stand below each other. They are kept until a thousand have come, so that columns are
/// as wide as they have to be; a column never gets narrower again.

#include <optional>
#include <string>
#include <vector>

#include "tarn/document/tarn_document_shown.h"

namespace tarn {

class Console;

/// `-` for what is not there.
Shown orDash(const std::optional<std::string>& text);

/// The engine with its version, which the engine's name often tells already. What is too long is cut.
Shown engineCell(const std::optional<std::string>& engine, const std::optional<std::string>& version);

class Columns {
 public:
  /// What is wider than the terminal goes on below, or is cut there; other outputs get all of it.
  enum class Wide { goesOn, isCut };

  explicit Columns(Console& console, Wide wide = Wide::goesOn) : m_console(console), m_wide(wide) {}
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
  Wide m_wide;
  std::vector<Row> m_rows;
  std::vector<std::size_t> m_widths;
};

}  // namespace tarn
