#pragma once
/// What a reader wants to know before anything else: machine and database in a few words, what is low, what
/// could not be asked. The facts say which members tell of it.

#include <vector>

#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_status.h"
#include "tarn/show/tarn_show_lines.h"

namespace tarn {

/// Lines in the order in which the facts name them first; none when the document has no such members.
std::vector<Labelled> briefOf(const Tree& tree, const Facts& facts);

/// The places that facts need and where the document has nothing.
std::vector<std::string> missingNeeds(const Tree& tree, const Facts& facts);

}  // namespace tarn
