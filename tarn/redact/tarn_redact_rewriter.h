#pragma once
/// The second pass over a document: the same bytes with pseudonyms in place of what was found; and a look at
/// what comes out, since what leaves must hold no original.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tarn/redact/tarn_redact_map.h"
#include "tarn/redact/tarn_redact_scanner.h"

namespace tarn {

/// How often something was replaced, by kind.
using RedactCounts = std::array<std::uint64_t, kRedactKinds.size()>;

class Rewriter {
 public:
  using Write = std::function<void(std::string_view bytes)>;

  /// `redacted`: families whose addresses are pseudonyms already (Collector::redacted).
  Rewriter(const Patterns& patterns, const Words& words, RedactKinds wanted, RedactKinds redacted,
           RedactMap* map, Write write);

  /// The document's forms from the first pass (Collector::takeLog); not owned.
  void replay(const SpanLog& log) { m_scanner.replay(log); }
  void feed(std::string_view block) { m_scanner.feed(block); }
  void finish();

  const RedactCounts& counts() const { return m_counts; }
  /// Offset in the output of an original that is still there; nothing when there is none, as it should be.
  const std::optional<std::uint64_t>& leftOver() const { return m_leftOver; }
  /// Whether there were more addresses than pseudonyms for them.
  bool usedUp() const { return m_usedUp; }

 private:
  void rewrite(std::string_view bytes, const std::vector<Span>& spans);
  bool staysAsItIs(std::string_view text, const Span& span) const;
  void replace(std::string_view text, RedactKind kind);
  void put(std::string_view bytes);
  void verify(std::string_view bytes, const std::vector<Span>& spans);

  RedactKinds m_redacted;
  RedactMap* m_map;
  Write m_write;
  Scanner m_scanner, m_verifier;
  RedactCounts m_counts = {};
  std::uint64_t m_verified = 0;  ///< bytes of the output that were looked at
  std::optional<std::uint64_t> m_leftOver;
  bool m_usedUp = false;
};

/// Puts the originals of a map back where their pseudonyms stand.
class Restorer {
 public:
  Restorer(const Patterns& patterns, const RedactMap& map, Rewriter::Write write);

  void feed(std::string_view block) { m_scanner.feed(block); }
  void finish() { m_scanner.finish(); }

  const RedactCounts& counts() const { return m_counts; }
  /// Pseudonyms that the map does not know.
  std::uint64_t unknown() const { return m_unknown; }

 private:
  void restore(std::string_view bytes, const std::vector<Span>& spans);

  const RedactMap& m_map;
  Rewriter::Write m_write;
  Words m_noWords;
  Scanner m_scanner;
  RedactCounts m_counts = {};
  std::uint64_t m_unknown = 0;
};

}  // namespace tarn
