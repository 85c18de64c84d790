#pragma once
/// What the author of a template cannot have meant.

#include <set>
#include <string>
#include <vector>

#include "tarn/document/tarn_document_shown.h"
#include "tarn/template/tarn_template_rule.h"

namespace tarn {

/// All findings in the order of their places, but for those of the allowed rules.
std::vector<Finding> check(const TemplateSource& source, const std::set<std::string>& allowed);

/// `error|warning: text; hint [rule]`.
Shown asText(const Finding& finding);
const char* nameOf(Level level);

/// Whether a key is one that the collector repeats its member for.
bool isRepeat(const Words& words);
/// The name of a member in the result.
std::string nameInResult(const Raw& key);

}  // namespace tarn
