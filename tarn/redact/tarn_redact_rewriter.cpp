#include "tarn/redact/tarn_redact_rewriter.h"

#include <utility>

namespace tarn {

namespace {

std::string_view contents(std::string_view bytes, const Span& span) {
  return bytes.substr(span.offset, span.length);
}

}  // namespace

Rewriter::Rewriter(const Patterns& patterns, const Words& words, RedactKinds wanted, RedactKinds redacted,
                   RedactMap* map, Write write)
    : m_redacted(redacted),
      m_map(map),
      m_write(std::move(write)),
      m_scanner(patterns, words, wanted,
                [this](std::string_view bytes, const std::vector<Span>& spans) { rewrite(bytes, spans); }),
      m_verifier(patterns, words, wanted,
                 [this](std::string_view bytes, const std::vector<Span>& spans) { verify(bytes, spans); }) {}

void Rewriter::finish() {
  m_scanner.finish();
  m_verifier.finish();
}

bool Rewriter::staysAsItIs(std::string_view text, const Span& span) const {
  if (!span.pseudonym) {
    return false;
  }
  const bool isAddress = span.kind <= RedactKind::mac;
  return !isAddress || m_redacted[indexOf(span.kind)] || m_map->byPseudonym(text) != nullptr;
}

void Rewriter::rewrite(std::string_view bytes, const std::vector<Span>& spans) {
  std::size_t done = 0;
  for (const Span& span : spans) {
    put(bytes.substr(done, span.offset - done));
    const std::string_view text = contents(bytes, span);
    if (staysAsItIs(text, span)) {
      put(text);
    } else {
      replace(text, span.kind);
    }
    done = span.end();
  }
  put(bytes.substr(done));
}

void Rewriter::replace(std::string_view text, RedactKind kind) {
  const auto pseudonym = m_map->pseudonymOf(kind, text);
  m_usedUp = m_usedUp || !pseudonym;
  put(pseudonym.value_or(""));
  ++m_counts[indexOf(kind)];
}

void Rewriter::put(std::string_view bytes) {
  m_write(bytes);
  m_verifier.feed(bytes);
}

void Rewriter::verify(std::string_view bytes, const std::vector<Span>& spans) {
  for (const Span& span : spans) {
    const std::string_view text = contents(bytes, span);
    const bool isOurs = staysAsItIs(text, span) || m_map->byPseudonym(text) != nullptr;
    if (!isOurs && !m_leftOver) {
      m_leftOver = m_verified + span.offset;
    }
  }
  m_verified += bytes.size();
}

Restorer::Restorer(const Patterns& patterns, const RedactMap& map, Rewriter::Write write)
    : m_map(map),
      m_write(std::move(write)),
      m_scanner(patterns, m_noWords, RedactKinds(),
                [this](std::string_view bytes, const std::vector<Span>& spans) { restore(bytes, spans); }) {}

void Restorer::restore(std::string_view bytes, const std::vector<Span>& spans) {
  std::size_t done = 0;
  for (const Span& span : spans) {
    m_write(bytes.substr(done, span.offset - done));
    const std::string_view text = contents(bytes, span);
    const RedactMap::Pair* const pair = m_map.byPseudonym(text);
    m_write(pair == nullptr ? text : pair->original);
    m_unknown += pair == nullptr ? 1 : 0;
    m_counts[indexOf(pair == nullptr ? span.kind : pair->kind)] += pair == nullptr ? 0 : 1;
    done = span.end();
  }
  m_write(bytes.substr(done));
}

}  // namespace tarn
