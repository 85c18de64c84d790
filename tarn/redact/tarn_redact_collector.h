#pragma once
/// The first pass over a document: what it declares to be its own.
///
/// Names of the host and its accounts, the customer's facts and credentials are declared where the facts
/// table says so
/// (`reveals`), or by a form (tarn_redact_rules.h). From then on they are words that are found wherever they
/// stand, in every document of the call.

#include <string>
#include <string_view>
#include <utility>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/facts/tarn_facts_table.h"
#include "tarn/redact/tarn_redact_map.h"
#include "tarn/redact/tarn_redact_scanner.h"

namespace tarn {

class Collector : private DocumentSink {
 public:
  /// Declared words go to `words`, addresses that lie where pseudonyms do to `map`. Nothing is owned.
  Collector(const Facts& facts, const Patterns& patterns, RedactKinds wanted, Words* words, RedactMap* map);

  bool feed(std::string_view block);
  Ending finish();

  /// Families of which all addresses lie where pseudonyms do: the document was redacted before.
  RedactKinds redacted() const { return ~m_originals; }
  /// What the forms found, for the second pass.
  SpanLog takeLog() { return std::move(m_log); }

 private:
  bool text(const Piece& piece, const Place&) override;
  void declareValue();
  void declare(RedactKind kind, std::string_view text);
  void look(std::string_view bytes, const std::vector<Span>& spans);
  void lookAtAddress(std::string_view bytes, const Span& span);

  const Facts& m_facts;
  RedactKinds m_wanted, m_originals;
  Words* m_words;
  RedactMap* m_map;
  Words m_noWords;
  Path m_path;
  Reader m_reader;
  Scanner m_scanner;
  SpanLog m_log;
  std::uint64_t m_seen = 0;      ///< bytes that were looked at
  std::size_t m_deepest = 0;     ///< level of the deepest place that declares something
  const Fact* m_fact = nullptr;  ///< of the text that is being read, if it declares something
  std::string m_value;           ///< that text
};

}  // namespace tarn
