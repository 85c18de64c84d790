// Redaction: every rule on its own examples, pseudonyms as properties, documents there and back.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tarn/redact/tarn_redact_patterns.h"
#include "tarn/redact/tarn_redact_rules.h"

namespace tarn {
namespace {

/// What is found stands between « and ».
std::string marked(const std::string& text) {
  static const Patterns patterns;
  std::vector<Span> spans;
  patterns.find(text, 0, &spans);
  std::string result = text;
  for (auto span = spans.rbegin(); span != spans.rend(); ++span)
    if (!span->pseudonym)
      result.insert(span->end(), "»").insert(span->offset, "«");
  return result;
}

std::string without(std::string text, const std::string& mark) {
  for (std::size_t at = 0; (at = text.find(mark)) != std::string::npos;)
    text.erase(at, mark.size());
  return text;
}

TEST(Redaction, EveryRuleFindsItsHitsAndLeavesItsNearMissesAlone) {
  for (const RedactRule& rule : redactRules()) {
    for (const std::string_view hit : rule.hits)
      EXPECT_EQ(hit, marked(without(without(std::string(hit), "«"), "»"))) << rule.name;
    for (const std::string_view miss : rule.nearMisses)
      EXPECT_EQ(miss, marked(std::string(miss))) << rule.name;
  }
}

}  // namespace
}  // namespace tarn
