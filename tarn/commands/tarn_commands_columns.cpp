#include "tarn/commands/tarn_commands_columns.h"

#include <algorithm>

#include "tarn/commands/tarn_commands_console.h"

namespace tarn {

namespace {

constexpr std::size_t kRowsKept = 1000;
constexpr std::size_t kGap = 2;
/// More of a name or a version would push everything behind it away.
constexpr std::size_t kCellWidth = 32;

}  // namespace

Shown orDash(const std::optional<std::string>& text) {
  return text ? shown(*text) : Shown("-");
}

Shown engineCell(const std::optional<std::string>& engine, const std::optional<std::string>& version) {
  const bool isTold = !version || (engine && engine->find(*version) != std::string::npos);
  return isTold ? orDash(engine)
                : fitted((engine ? shown(*engine) + " " : Shown()) + shown(*version), kCellWidth);
}

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
  const bool isCut = m_wide == Wide::isCut && m_console.outputIsTerminal();
  for (const Row& row : m_rows) {
    Shown line;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      line += row.cells[i];
      if (i + 1 < row.cells.size()) {
        line += blanks(m_widths[i] + kGap - columns(row.cells[i].text()));
      }
    }
    m_console.line(isCut ? fitted(line, m_console.width()) : line);
    for (const Shown& below : row.below) {
      m_console.line(below);
    }
  }
  m_rows.clear();
}

}  // namespace tarn
