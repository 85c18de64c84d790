#include "tarn/redact/tarn_redact_patterns.h"

#include <re2/re2.h>
#include <re2/set.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "tarn/redact/tarn_redact_rules.h"

namespace tarn {

namespace {

constexpr std::int64_t kPatternMemory = 64 << 20;
/// A candidate that was refused may hold another one; in a longer one nobody wrote an address.
constexpr std::size_t kLookInside = 64;

re2::StringPiece pieceOf(std::string_view text) {
  return {text.data(), text.size()};
}

RE2::Options options() {
  RE2::Options options(RE2::Latin1);
  options.set_max_mem(kPatternMemory);
  options.set_log_errors(false);
  return options;
}

/// Any of the rules; which one is asked of the set.
std::string anyRule() {
  std::string any;
  for (const RedactRule& rule : redactRules()) {
    any += any.empty() ? "(?:" : "|(?:";
    any += rule.pattern;
    any += ')';
  }
  return any;
}

/// Behind the first run of letters and digits of what was refused, and of what parts it from the next.
std::size_t afterFirstPiece(std::string_view text, const Span& refused) {
  if (refused.length > kLookInside) {
    return refused.end();
  }
  std::size_t at = refused.offset;
  while (at < refused.end() && isalnum(static_cast<unsigned char>(text[at])) != 0) {
    ++at;
  }
  return std::max(at, refused.offset + 1);
}

Span spanOf(std::string_view text, const re2::StringPiece& group, RedactKind kind) {
  return {static_cast<std::size_t>(group.data() - text.data()), group.size(), kind, false};
}

/// Appends what the rule accepts of a match. Where to go on.
std::size_t take(std::string_view text, const re2::StringPiece& match, const RedactRule& rule,
                 const RE2& pattern, std::vector<Span>* found) {
  std::array<re2::StringPiece, 3> groups;  // the first is the match
  const int count = pattern.NumberOfCapturingGroups() + 1;
  pattern.Match(match, 0, match.size(), RE2::ANCHOR_BOTH, groups.data(), count);
  Span span = spanOf(text, groups[1], rule.kind);
  const bool isBehind = groups[1].data() > match.data();
  std::size_t next = isBehind ? span.offset : afterFirstPiece(text, span);
  if (span.length > 0 && rule.accept(text, &span)) {
    found->push_back(span);
    next = span.end();
  }
  Span second = count == 3 ? spanOf(text, groups[2], RedactKind::secret) : Span();
  if (second.length > 0 && acceptSecret(text, &second)) {
    found->push_back(second);
    next = second.end();
  }
  return next;
}

}  // namespace

/// The rules three times, since only automata are quick, and those tell neither which one it was nor its
/// group: where any of them matches, which of them match there, and each by itself.
struct Patterns::Compiled {
  RE2 any = RE2(anyRule(), options());
  RE2::Set which = RE2::Set(options(), RE2::ANCHOR_BOTH);
  std::vector<std::unique_ptr<RE2>> each;
};

Patterns::Patterns() : m_compiled(std::make_unique<Compiled>()) {
  for (const RedactRule& rule : redactRules()) {
    m_compiled->which.Add(pieceOf(rule.pattern), nullptr);
    m_compiled->each.push_back(std::make_unique<RE2>(pieceOf(rule.pattern), options()));
  }
  m_compiled->which.Compile();
}

Patterns::~Patterns() = default;

void Patterns::find(std::string_view text, std::size_t from, std::vector<Span>* found) const {
  re2::StringPiece match;
  std::vector<int> which;
  std::size_t at = from;
  while (m_compiled->any.Match(pieceOf(text), at, text.size(), RE2::UNANCHORED, &match, 1)) {
    m_compiled->which.Match(match, &which);
    const auto first = static_cast<std::size_t>(*std::min_element(which.begin(), which.end()));
    at = take(text, match, redactRules()[first], *m_compiled->each[first], found);
  }
}

}  // namespace tarn
