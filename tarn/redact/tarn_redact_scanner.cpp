#include "tarn/redact/tarn_redact_scanner.h"

#include <algorithm>
#include <cctype>
#include <tuple>
#include <utility>

#include "tarn/redact/tarn_redact_cover.h"

namespace tarn {

namespace {

constexpr std::size_t kWindow = 256 << 10;
/// What begins before the last so many bytes of a window is found whole: nothing longer is looked for.
constexpr std::size_t kMargin = 16 << 10;
/// What stands before is looked at again, since a form may begin there whose value comes later.
constexpr std::size_t kContext = 1 << 10;

bool isWordByte(char byte) {
  return isalnum(static_cast<unsigned char>(byte)) != 0 || static_cast<unsigned char>(byte) >= 0x80;
}

/// The last place at or before `at`, and behind `begin`, where no word is torn; `at` when there is none near.
std::size_t betweenWords(std::string_view text, std::size_t begin, std::size_t at) {
  const std::size_t least = std::max(begin, at - std::min(at, kContext));
  for (std::size_t place = at; place > least; --place) {
    if (!isWordByte(text[place - 1])) {
      return place;
    }
  }
  return at;
}

}  // namespace

Scanner::Scanner(const Patterns& patterns, const Words& words, RedactKinds wanted, Sink sink)
    : m_patterns(patterns), m_words(words), m_wanted(wanted), m_sink(std::move(sink)) {}

void Scanner::feed(std::string_view block) {
  while (!block.empty()) {
    const std::size_t room = std::min(block.size(), kWindow);
    m_bytes += block.substr(0, room);
    block.remove_prefix(room);
    if (m_bytes.size() - m_told >= kWindow) {
      scan(false);
    }
  }
}

void Scanner::replay(const SpanLog& log) {
  if (log.isWhole()) {
    m_log.emplace(log);
  }
}

std::vector<Span> Scanner::spansFrom(std::size_t begin) {
  std::vector<Span> spans;
  const std::size_t from = begin == 0 ? 0 : betweenWords(m_text, 0, begin - std::min(begin, kContext));
  if (m_log) {
    m_log->read(m_base, m_base + begin, m_base + m_text.size(), &spans);
  } else {
    m_patterns.find(m_text, from, &spans);
  }
  m_words.find(m_text, from, &spans);
  std::erase_if(spans, [&](const Span& span) {
    return span.offset < begin || (!span.pseudonym && !m_wanted[indexOf(span.kind)]);
  });
  std::stable_sort(spans.begin(), spans.end(), [](const Span& one, const Span& other) {
    return std::tuple(one.offset, other.length) < std::tuple(other.offset, one.length);
  });
  std::size_t end = 0;
  std::erase_if(spans, [&end](const Span& span) {
    const bool overlaps = span.offset < end;
    end = overlaps ? end : span.end();
    return overlaps;
  });
  return spans;
}

// Up to where the window can be told: the margin is left for the next one, and so is what goes on into it.
std::size_t Scanner::cutOf(std::vector<Span>* spans, bool last) const {
  if (last) {
    return m_text.size();
  }
  std::size_t cut = m_text.size() - kMargin;
  const auto over =
      std::find_if(spans->begin(), spans->end(), [cut](const Span& span) { return span.end() > cut; });
  if (over != spans->end() && over->offset < cut) {
    const bool ends = over->end() < m_text.size() || over->offset == m_told;
    cut = ends ? over->end() : over->offset;
    spans->erase(ends ? over + 1 : over, spans->end());
    return cut;
  }
  const std::size_t told = over == spans->begin() ? m_told : (over - 1)->end();
  spans->erase(over, spans->end());
  return betweenWords(m_text, told, cut);
}

void Scanner::scan(bool last) {
  const std::size_t usable = m_bytes.size() - (last ? 0 : openEscape(m_bytes));
  appendCovered(std::string_view(m_bytes).substr(m_text.size(), usable - m_text.size()), &m_text);
  std::vector<Span> spans = spansFrom(m_told);
  const std::size_t cut = cutOf(&spans, last);
  for (Span& span : spans) {
    span.offset -= m_told;
  }
  m_sink(std::string_view(m_bytes).substr(m_told, cut - m_told), spans);
  const std::size_t gone = cut - std::min(cut, 2 * kContext);
  m_bytes.erase(0, gone);
  m_text.erase(0, gone);
  m_told = cut - gone;
  m_base += gone;
}

}  // namespace tarn
