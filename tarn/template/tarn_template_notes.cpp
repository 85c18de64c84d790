#include "tarn/template/tarn_template_notes.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarn {

namespace {

constexpr std::size_t kMostBytes = 127;

std::string inRows(std::size_t count) {
  return count == 1 ? "1 row" : fmt::format("{} rows", count);
}

}  // namespace

bool RowNotes::value(unsigned number, std::string_view text, bool isNull, bool isCut) {
  if (number == 0 || number > m_columns.size()) {
    return false;
  }
  Column& column = m_columns[number - 1];
  const std::size_t blank = text.find(' ');
  const bool more = isCut || (blank != std::string_view::npos &&
                              text.find_first_not_of(' ', blank) != std::string_view::npos);
  column.nulls += isNull ? 1 : 0;
  if (isNull || !more) {
    return false;
  }
  (blank == std::string_view::npos ? column.atEnd : column.atBlank) += 1;
  const bool isFirst = column.atEnd + column.atBlank == 1;
  if (isFirst) {
    column.cut = text;
    m_current = &column;
  }
  return isFirst && isCut;
}

void RowNotes::rest(std::string_view text) {
  m_current->cut += text;
}

void RowNotes::missing(const std::string& wanted, std::vector<std::string>& notes) const {
  const auto isWanted = [&wanted](const Column& column) { return column.name == wanted; };
  if (wanted.empty() || m_columns.empty() || std::any_of(m_columns.begin(), m_columns.end(), isWanted)) {
    return;
  }
  std::vector<std::string> names;
  for (const Column& column : m_columns) {
    names.push_back(column.name);
  }
  notes.push_back(fmt::format("no column {}; there are: {}", wanted, fmt::join(names, ", ")));
}

std::vector<std::string> RowNotes::notes(std::string_view kind, const std::string& wanted) const {
  std::vector<std::string> notes;
  if (!m_isQuery) {
    return notes;
  }
  missing(wanted, notes);
  if (m_rows == 0) {
    notes.emplace_back("no row");
  } else if (kind == "array") {
    notes.push_back(inRows(m_rows));
  }
  for (const Column& column : m_columns) {
    const bool isShown = wanted.empty() || column.name == wanted;
    if (isShown && column.nulls > 0) {
      notes.push_back(fmt::format("{} is NULL in {}", column.name, inRows(column.nulls)));
    }
    if (isShown && column.atBlank > 0) {
      notes.push_back(fmt::format("{} is cut at its first blank in {}: it was \"{}\"", column.name,
                                  inRows(column.atBlank), column.cut));
    }
    if (isShown && column.atEnd > 0) {
      notes.push_back(fmt::format("{} is cut at {} bytes in {}: it was \"{}\"", column.name, kMostBytes,
                                  inRows(column.atEnd), column.cut));
    }
  }
  return notes;
}

}  // namespace tarn
