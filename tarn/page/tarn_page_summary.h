#pragma once
/// What of a page stands there without its script: what the document is, what changed in a word, and what did
/// not answer. The only markup that is not in page.html.

#include <string>

#include "tarn/compare/tarn_compare_changes.h"
#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_status.h"

namespace tarn {

struct PageSubject {
  std::string file;
  const Tree& tree;
  const Facts& facts;
  const StatusSink& status;
  const Comparison* changes = nullptr;  ///< from an older document, or null
  std::string changedSince;             ///< that document, as people call it
};

/// As text of HTML: what is foreign has no control characters, and no character of markup.
std::string html(std::string_view foreign);

std::string pageTitle(const PageSubject& subject);
std::string pageSummary(const PageSubject& subject);

}  // namespace tarn
