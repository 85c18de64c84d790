#pragma once
/// What the forms found in a document, kept from the first pass over it for the second, which need not look
/// again.

#include <cstdint>
#include <vector>

#include "tarn/redact/tarn_redact_span.h"

namespace tarn {

class SpanLog {
 public:
  /// In order; the offset is that in the document. What would take more than 32 MiB is not kept.
  void add(std::uint64_t offset, const Span& span);
  /// False when something is missing: then the second pass has to look for itself.
  bool isWhole() const { return m_whole; }

  /// Reads along: the spans that begin from one offset up to another, their offsets counted from `base`.
  class Reader {
   public:
    explicit Reader(const SpanLog& log) : m_log(&log) {}
    void read(std::uint64_t base, std::uint64_t from, std::uint64_t to, std::vector<Span>* found);

   private:
    const SpanLog* m_log;
    std::size_t m_next = 0;
    std::uint64_t m_offset = 0;  ///< of the entry before
  };

 private:
  struct Entry {
    std::uint32_t distance;  ///< from the beginning of the one before
    std::uint16_t length;
    RedactKind kind;
    bool pseudonym;
  };

  std::vector<Entry> m_entries;
  std::uint64_t m_last = 0;
  bool m_whole = true;
};

}  // namespace tarn
