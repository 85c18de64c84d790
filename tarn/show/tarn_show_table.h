#pragma once
/// Arrays of objects as tables, and as bars where a column counts.

#include <string>

#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_table.h"
#include "tarn/show/tarn_show_lines.h"

namespace tarn {

/// Whether all elements are objects of texts and scalars.
bool isTable(const Tree& tree, const Node& array);

/// Columns in the order in which the rows name them. Equal rows that follow each other are shown once.
void showTable(const Tree& tree, const Node& array, const Facts& facts, const std::string& pointer,
               std::size_t indent, Lines& lines);

}  // namespace tarn
