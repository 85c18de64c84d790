#include "tarn/commands/tarn_commands_columns.h"

#include <algorithm>

#include "tarn/commands/tarn_commands_console.h"

namespace tarn {

namespace {

constexpr std::size_t kRowsKept = 1000;
constexpr std::size_t kGap = 2;

}  // namespace

void Columns::row(std::vector<Shown> cells) {
  if (m_rows.size() == kRowsKept) {
    print();
  }
  m_widths.resize(std::max(m_widths.size(), cells.size()));
  for (std::size_t i = 0; i + 1 < cells.size(); ++i) {
    m_widths[i] = std::max(m_widths[i], columns(cells[i].text()));
  }
  m_rows.push_back({std::move(cells), {}});
}

void Columns::line(Shown text) {
  m_rows.back().below.push_back(std::move(text));
}

void Columns::print() {
  for (const Row& row : m_rows) {
    Shown line;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      line += row.cells[i];
      if (i + 1 < row.cells.size()) {
        line += blanks(m_widths[i] + kGap - columns(row.cells[i].text()));
      }
    }
    m_console.line(line);
    for (const Shown& below : row.below) {
      m_console.line(below);
    }
  }
  m_rows.clear();
}

}  // namespace tarn
