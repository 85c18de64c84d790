#pragma once
/// What a page carries for its script: the document with what the table of facts knows of it, and the
/// changes. data.js tells the form.

#include <string>

#include "tarn/compare/tarn_compare_changes.h"
#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

/// As strict JSON. `changes` is null for a page of one document. Arrays of rows go column by column, which
/// halves what is left of them when they are packed.
std::string pageModel(const Tree& tree, const Facts& facts, const Comparison* changes);

}  // namespace tarn
