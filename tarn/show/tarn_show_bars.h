#pragma once
/// Rows that count something, as bars, the longest first.

#include <optional>
#include <string>

#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_table.h"
#include "tarn/show/tarn_show_lines.h"

namespace tarn {

struct BarColumns {
  std::string label, value;
};

/// The columns to draw: those of the fact's chart, else those that `tarn_objectify` tells. Nothing when a row
/// has other columns, or a value that is no number.
std::optional<BarColumns> barColumns(const Tree& tree, const Node& array, const Fact* fact);

void showBars(const Tree& tree, const Node& array, const BarColumns& columns, std::size_t indent,
              Lines& lines);

}  // namespace tarn
