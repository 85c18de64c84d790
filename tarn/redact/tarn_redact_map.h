#pragma once
/// Originals and their pseudonyms, both ways.
///
/// A pair is text for text as it stands between the quotes of a document, so what was redacted can be
/// restored byte for byte. The same thing in another letter case or another written form has a pseudonym of
/// its own that shows the kinship: `redacted-host-1`, `REDACTED-HOST-1`, `redacted-host-1b`.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tarn/redact/tarn_redact_kind.h"
#include "tarn/redact/tarn_redact_pool.h"

namespace tarn {

class RedactMap {
 public:
  struct Pair {
    RedactKind kind;
    std::string original, pseudonym;
  };

  /// The original's pseudonym, made if there is none yet. Nothing when an address family is used up.
  std::optional<std::string_view> pseudonymOf(RedactKind kind, std::string_view original);
  /// Null when it stands for nothing.
  const Pair* byPseudonym(std::string_view pseudonym) const;
  const Pair* byOriginal(std::string_view original) const;
  /// An original that lies where pseudonyms do; pseudonyms are never equal to it.
  void avoid(const Address& original) { m_pool.avoid(original); }

  const std::deque<Pair>& pairs() const { return m_pairs; }

  /// Takes over what an earlier call has given. False when one of the texts is there already.
  bool learn(RedactKind kind, std::string original, std::string pseudonym);

 private:
  bool add(RedactKind kind, std::string original, std::string pseudonym);
  std::optional<std::string> makePseudonym(RedactKind kind, std::string_view original);
  std::optional<std::string> addressPseudonym(Address original);
  std::string wordPseudonym(RedactKind kind, std::string_view original);
  void learnNumber(RedactKind kind, std::string_view original, std::string_view pseudonym);

  std::deque<Pair> m_pairs;  ///< texts stay where they are
  std::unordered_map<std::string_view, const Pair*> m_byOriginal, m_byPseudonym;
  /// By kind and text in lower case: how many forms of it there are, and the number of its pseudonyms.
  struct Word {
    unsigned number = 0, forms = 0;
  };
  std::unordered_map<std::string, Word> m_words;
  std::array<unsigned, kRedactKinds.size()> m_numbers = {};
  AddressPool m_pool;
};

/// Length of the pseudonym, of a kind that has no addresses, that the text begins with; 0 when it begins with
/// none.
std::size_t wordPseudonymAt(std::string_view text);
/// Whether the whole word is one.
bool isWordPseudonym(std::string_view word);

}  // namespace tarn
