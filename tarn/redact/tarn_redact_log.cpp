#include "tarn/redact/tarn_redact_log.h"

#include <limits>

namespace tarn {

namespace {

constexpr std::size_t kEntriesAtMost = 4 << 20;

template <class Number>
bool fits(std::uint64_t value) {
  return value <= std::numeric_limits<Number>::max();
}

}  // namespace

void SpanLog::add(std::uint64_t offset, const Span& span) {
  const std::uint64_t distance = offset - m_last;
  m_whole = m_whole && m_entries.size() < kEntriesAtMost && fits<std::uint32_t>(distance) &&
            fits<std::uint16_t>(span.length);
  if (!m_whole) {
    m_entries = {};
    return;
  }
  m_entries.push_back({static_cast<std::uint32_t>(distance), static_cast<std::uint16_t>(span.length),
                       span.kind, span.pseudonym});
  m_last = offset;
}

void SpanLog::Reader::read(std::uint64_t base, std::uint64_t from, std::uint64_t to,
                           std::vector<Span>* found) {
  std::size_t next = m_next;
  std::uint64_t offset = m_offset;
  for (; next < m_log->m_entries.size(); ++next) {
    const Entry& entry = m_log->m_entries[next];
    offset += entry.distance;
    if (offset >= to) {
      return;
    }
    if (offset >= from) {
      found->push_back({static_cast<std::size_t>(offset - base), entry.length, entry.kind, entry.pseudonym});
    } else {
      m_next = next + 1;
      m_offset = offset;
    }
  }
}

}  // namespace tarn
