#pragma once
/// Finds what is to be redacted in a document of any size, block by block, in memory that does not grow with
/// it.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/redact/tarn_redact_log.h"
#include "tarn/redact/tarn_redact_patterns.h"
#include "tarn/redact/tarn_redact_words.h"

namespace tarn {

class Scanner {
 public:
  /// Gets the document's next bytes and what was found in them: in order, none within another, none over the
  /// end.
  using Sink = std::function<void(std::string_view bytes, const std::vector<Span>& spans)>;

  /// Patterns and words are not owned. Of what overlaps the first counts, of what begins at one place the
  /// longest; kinds that are not wanted do not count.
  Scanner(const Patterns& patterns, const Words& words, RedactKinds wanted, Sink sink);
  /// From now on what the forms find comes from a log of this document, if that is whole; not owned.
  void replay(const SpanLog& log);

  void feed(std::string_view block);
  void finish() { scan(true); }

 private:
  void scan(bool last);
  std::vector<Span> spansFrom(std::size_t begin);
  std::size_t cutOf(std::vector<Span>* spans, bool last) const;

  const Patterns& m_patterns;
  const Words& m_words;
  RedactKinds m_wanted;
  Sink m_sink;
  std::string m_bytes;       ///< the window: what came before, for its context, and what is to be told
  std::string m_text;        ///< the same, covered
  std::size_t m_told = 0;    ///< so much of the window was handed out
  std::uint64_t m_base = 0;  ///< offset of the window in the document
  std::optional<SpanLog::Reader> m_log;
};

}  // namespace tarn
