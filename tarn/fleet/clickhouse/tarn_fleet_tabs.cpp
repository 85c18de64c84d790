#include "tarn/fleet/clickhouse/tarn_fleet_tabs.h"

namespace tarn {

namespace {

constexpr std::string_view kNull = "\\N";

/// What the letter behind a backslash stands for; any other for itself.
char plainOf(char letter) {
  constexpr std::string_view kLetters = "bfnrt0";
  constexpr std::string_view kPlain("\b\f\n\r\t\0", 6);
  const std::size_t at = kLetters.find(letter);
  return at == std::string_view::npos ? letter : kPlain[at];
}

void appendPlain(std::string_view field, std::string& texts) {
  while (!field.empty()) {
    const std::size_t plain = std::min(field.find('\\'), field.size());
    texts += field.substr(0, plain);
    field.remove_prefix(plain);
    if (field.size() > 1) {
      texts += plainOf(field[1]);
    }
    field.remove_prefix(std::min<std::size_t>(field.size(), 2));
  }
}

}  // namespace

bool TabRows::add(std::string_view piece) {
  for (std::size_t end = 0; (end = piece.find('\n')) != std::string_view::npos;
       piece.remove_prefix(end + 1)) {
    m_begun += piece.substr(0, end);
    const bool more = line(m_begun);
    m_begun.clear();
    if (!more) {
      return false;
    }
  }
  m_begun += piece;
  return true;
}

bool TabRows::line(std::string_view line) {
  m_texts.clear();
  m_texts.reserve(line.size());  // so that the views of the row stay
  m_row.clear();
  for (bool more = true; more;) {
    const std::size_t tab = line.find('\t');
    const std::string_view field = line.substr(0, tab);
    const std::size_t begin = m_texts.size();
    appendPlain(field, m_texts);
    m_row.push_back(field == kNull ? std::string_view() : std::string_view(m_texts).substr(begin));
    more = tab != std::string_view::npos;
    line.remove_prefix(more ? tab + 1 : line.size());
  }
  return m_take(m_row);
}

}  // namespace tarn
