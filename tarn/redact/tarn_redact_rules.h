#pragma once
/// What redaction recognises by its form: one row a form, with what it finds and what it must leave alone.
/// The tests run these, docs/redaction.md shows them.

#include <string>
#include <string_view>
#include <vector>

#include "tarn/redact/tarn_redact_span.h"

namespace tarn {

struct RedactRule {
  RedactKind kind;
  std::string_view name;
  /// RE2; its group is what gets a pseudonym. A second group is a credential, and judged as such.
  std::string pattern;
  /// Looks at what the pattern cannot: what stands around, whether the value means anything. May make the
  /// span shorter; false leaves it alone.
  bool (*accept)(std::string_view text, Span* span);
  std::vector<std::string_view> hits;        ///< what is found stands between « and »
  std::vector<std::string_view> nearMisses;  ///< nothing is found
};

const std::vector<RedactRule>& redactRules();

/// How credentials are judged (RedactRule::accept): settings about them are none.
bool acceptSecret(std::string_view text, Span* span);

}  // namespace tarn
