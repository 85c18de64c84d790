#pragma once
/// Finds words and phrases that were declared, wherever they stand as whole words, in any letter case. The
/// cost does not depend on how many there are.
///
/// A word is a run of letters, digits and bytes above 127; everything else parts words. A phrase is found
/// with the same characters between its words. Letter case is that of Latin, Greek and Cyrillic letters
/// (towlower of the C.UTF-8 locale).

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tarn/redact/tarn_redact_kind.h"
#include "tarn/redact/tarn_redact_span.h"

namespace tarn {

/// The text with its letters in one case; equal for what counts as one word.
std::string folded(std::string_view text);

class Words {
 public:
  /// Takes a text as it stands in a document; one without a letter or digit is not taken. Of a text that
  /// comes twice the first kind counts.
  void add(RedactKind kind, std::string_view raw);
  bool empty() const { return m_nodes.size() == 1; }

  /// In covered bytes (tarn_redact_cover.h): appends where they stand from an offset on, in order, the
  /// longest at each place, none within another.
  void find(std::string_view text, std::size_t from, std::vector<Span>* found) const;

 private:
  /// A step from a node by what stands between two words and the next word.
  struct Node {
    bool ends = false;
    RedactKind kind = RedactKind::customer;
  };

  struct Match {
    std::size_t length = 0;
    RedactKind kind = RedactKind::customer;
  };

  static std::string keyOf(std::uint32_t node, std::string_view piece);
  Match matchAt(std::string_view text) const;

  std::vector<Node> m_nodes = {Node()};
  std::unordered_map<std::string, std::uint32_t> m_steps;       ///< by node and folded piece
  std::vector<bool> m_beginnings = std::vector<bool>(1 << 16);  ///< of what may be found
};

}  // namespace tarn
