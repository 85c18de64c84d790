#pragma once
/// Finds by its form what nobody declared: addresses, e-mail addresses, account names, credentials.
///
/// It reads a document's bytes in which escapes were covered (tarn_redact_cover.h), so it sees through `\"`
/// and
/// `\n`, and across members: a row `"NAME": "tls_password", "VALUE": "…"` is a credential, too.

#include <memory>
#include <string_view>
#include <vector>

#include "tarn/redact/tarn_redact_span.h"

namespace tarn {

class Patterns {
 public:
  Patterns();
  ~Patterns();

  /// Appends what is found from an offset on, in order, none within another. Pseudonyms are found, too, and
  /// marked.
  void find(std::string_view text, std::size_t from, std::vector<Span>* found) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> m_compiled;
};

}  // namespace tarn
