#pragma once

#include <string>

/// The plainest way to do what `sql array` does: connects to a data source through the driver manager, runs
/// the query, and prints every row as the collector would, with one SQLGetData of 128 bytes per value.
/// The empty text when something fails.
std::string bareRows(const char* dataSource, const std::string& query);

/// The same without keeping anything: what is left is the driver's own work and memory. The number of rows.
unsigned long drainedRows(const char* dataSource, const std::string& query);
