#pragma once

#include <string>

/// A document of about `size` bytes in the shape of our own output: rows of eight short columns.
inline std::string document(long size) {
  const std::string row =
      R"({"TABSCHEMA": "SYSCAT", "TABNAME": "TABLES", "TYPE": "V", "STATUS": "N", "COLCOUNT": "72", )"
      R"("CARD": "-1", "NPAGES": "-1", "STATS_TIME": "2026-11-21-02.44.01"})";
  std::string text = R"({"rows": [)" + row;
  while (text.size() + row.size() < static_cast<unsigned long>(size)) {
    text += ", " + row;
  }
  return text + "]}";
}
