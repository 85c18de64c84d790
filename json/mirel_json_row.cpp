#include "json/mirel_json_row.h"

#include <cstring>

#include "common/mirel_common_builder.h"
#include "json/mirel_json_scan.h"
#include "json/mirel_json_writer.h"

namespace {

const char* endOfValue(const char* value, const char* valuesEnd) {
  const void* const lineFeed = memchr(value, '\n', static_cast<unsigned long>(valuesEnd - value));
  return lineFeed == nullptr ? valuesEnd : static_cast<const char*>(lineFeed);
}

/// Copies the text and returns where it ends in `out`.
char* copy(char* out, const char* text, unsigned long length) {
  memcpy(out, text, length);
  return out + length;
}

}  // namespace

RowColumns::RowColumns(std::vector<mirel_string> names) : m_names(std::move(names)) {
  m_heads.reserve(m_names.size());
  for (const mirel_string& name : m_names) {
    m_heads.push_back(mirel_string("\"") + escapeJson(name) + "\": \"");
    m_headsLength += m_heads.back().length();
  }
}

std::vector<mirel_string> Row::values() const {
  std::vector<mirel_string> values;
  values.reserve(m_columns->names().size());
  const char* value = m_values.c_str();
  const char* const valuesEnd = value + m_values.length();
  while (values.size() < m_columns->names().size()) {
    const char* const end = endOfValue(value, valuesEnd);
    values.push_back(unescapeJson(value, static_cast<unsigned long>(end - value)));
    value = end == valuesEnd ? end : end + 1;
  }
  return values;
}

void Row::write(mirel_string_builder& out, unsigned long indent) const {
  constexpr char kSeparator[] = "\",\n";
  constexpr unsigned long kSeparatorLength = sizeof kSeparator - 1;
  const unsigned long atMost = m_columns->headsLength() + m_values.length() +
                               m_columns->names().size() * (2 * indent + kSeparatorLength);
  char* const begin = out.extend(atMost);
  if (begin == nullptr) {
    return;
  }
  char* to = begin;
  const char* value = m_values.c_str();
  const char* const valuesEnd = value + m_values.length();
  for (unsigned long column = 0; column < m_columns->names().size(); ++column) {
    memset(to, ' ', 2 * indent);
    const mirel_string& head = m_columns->head(column);
    to = copy(to + 2 * indent, head.c_str(), head.length());
    const char* const end = endOfValue(value, valuesEnd);
    to = copy(to, value, static_cast<unsigned long>(end - value));
    to = copy(to, kSeparator, kSeparatorLength);
    value = end == valuesEnd ? end : end + 1;
  }
  out.removeLast(atMost - static_cast<unsigned long>(to - begin));
}

void RowValues::append(const char* text, unsigned long length) {
  if (endOfPlain(text, text + length) == text + length) {
    appendPlain(text, length);
  } else {
    const mirel_string escaped = escapeJson(mirel_string(text, length));
    appendPlain(escaped.c_str(), escaped.length());
  }
}

Row RowValues::row(std::shared_ptr<const RowColumns> columns) const {
  return {std::move(columns), mirel_string(m_values.data(), m_values.empty() ? 0 : m_values.size() - 1)};
}
