#pragma once

#include <string>

/// A query for rows of eight columns, computed by the engine: numbers, short texts, a longer one, NULLs.
inline std::string rowsQuery(const std::string& dataSource, const std::string& rows) {
  const std::string numbers = dataSource == "POSTGRESQL"
                                  ? "select n from generate_series(1, " + rows + ") as s(n)"
                                  : "select 1 union all select n + 1 from r where n < " + rows;
  return "with recursive r(n) as (" + numbers +
         ") select n as \"ID\", 'SYSCAT' as \"TABSCHEMA\", 'TABLE' || n as \"TABNAME\", n % 97 as "
         "\"COLCOUNT\", "
         "n * 1.5 as \"CARD\", nullif(n % 3, 0) as \"NPAGES\", '2026-11-21-02.44.01.000000' as "
         "\"STATS_TIME\", "
         "'a longer text of forty characters or so..' as \"REMARKS\" from r";
}
