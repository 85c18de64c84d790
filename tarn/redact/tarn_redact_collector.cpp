#include "tarn/redact/tarn_redact_collector.h"

#include <algorithm>

namespace tarn {

namespace {

/// A longer text is a listing; forms find what is in it.
constexpr std::size_t kLongestName = 4096;
/// Shorter ones that a form found are replaced where they stand, and nowhere else.
constexpr std::size_t kShortestName = 3;
constexpr std::size_t kShortestSecret = 6;

bool reveals(const Fact& fact, std::string_view what) {
  return std::find(fact.reveals.begin(), fact.reveals.end(), what) != fact.reveals.end();
}

/// Not of a row: there a column may say many things.
bool declares(const Fact& fact) {
  const bool isOne = fact.unit == Unit::text && fact.place.find('*') == std::string::npos;
  return isOne && (reveals(fact, "host") || reveals(fact, "person"));
}

bool isNothing(std::string_view value) {
  return value.size() < 2 || value == "null" || value == "NULL" || isWordPseudonym(value);
}

}  // namespace

Collector::Collector(const Facts& facts, const Patterns& patterns, RedactKinds wanted, Words* words,
                     RedactMap* map)
    : m_facts(facts),
      m_wanted(wanted),
      m_words(words),
      m_map(map),
      m_reader(*this, m_path),
      m_scanner(patterns, m_noWords, RedactKinds().set(),
                [this](std::string_view bytes, const std::vector<Span>& spans) { look(bytes, spans); }) {
  for (const Fact& fact : facts.all()) {
    const auto depth = std::count(fact.place.begin(), fact.place.end(), '/');
    m_deepest = declares(fact) ? std::max(m_deepest, static_cast<std::size_t>(depth)) : m_deepest;
  }
}

bool Collector::feed(std::string_view block) {
  m_scanner.feed(block);
  return m_reader.feed(block);
}

Ending Collector::finish() {
  m_scanner.finish();
  return m_reader.finish();
}

bool Collector::text(const Piece& piece, const Place&) {
  if (piece.begins) {
    m_value.clear();
    const Fact* const fact = m_path.depth() <= m_deepest ? m_facts.find(m_path.pointer()) : nullptr;
    m_fact = fact != nullptr && declares(*fact) ? fact : nullptr;
  }
  if (m_fact != nullptr && m_value.size() <= kLongestName) {
    m_value += piece.raw;
  }
  if (piece.ends && m_fact != nullptr && m_value.size() <= kLongestName) {
    declareValue();
  }
  return true;
}

// A host is also meant by its name without the domain, and by the domain.
void Collector::declareValue() {
  const RedactKind kind = reveals(*m_fact, "host") ? RedactKind::host : RedactKind::customer;
  const std::size_t dot = m_value.find('.');
  declare(kind, m_value);
  if (kind == RedactKind::host && dot != std::string::npos) {
    declare(kind, std::string_view(m_value).substr(0, dot));
    declare(kind, std::string_view(m_value).substr(dot + 1));
  }
}

void Collector::declare(RedactKind kind, std::string_view text) {
  if (!isNothing(text) && m_wanted[indexOf(kind)]) {
    m_words->add(kind, text);
  }
}

void Collector::look(std::string_view bytes, const std::vector<Span>& spans) {
  for (const Span& span : spans) {
    m_log.add(m_seen + span.offset, span);
    if (span.kind <= RedactKind::mac) {
      lookAtAddress(bytes, span);
    } else if (!span.pseudonym && span.kind != RedactKind::email) {
      const std::size_t shortest = span.kind == RedactKind::secret ? kShortestSecret : kShortestName;
      const bool isName = span.length >= shortest && span.length <= kLongestName;
      declare(span.kind, isName ? bytes.substr(span.offset, span.length) : "");
    }
  }
  m_seen += bytes.size();
}

void Collector::lookAtAddress(std::string_view bytes, const Span& span) {
  if (!span.pseudonym) {
    m_originals.set(indexOf(span.kind));
  } else if (const auto address = readAddress(bytes.substr(span.offset, span.length))) {
    m_map->avoid(*address);
  }
}

}  // namespace tarn
