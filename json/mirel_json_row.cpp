#include "json/mirel_json_row.h"

#include "json/mirel_json_writer.h"

RowColumns::RowColumns(std::vector<mirel_string> names) : m_names(std::move(names)) {
  m_heads.reserve(m_names.size());
  for (const mirel_string& name : m_names) {
    m_heads.push_back(mirel_string("\"") + escapeJson(name) + "\": ");
  }
}
