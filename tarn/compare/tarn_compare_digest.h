#pragma once
/// Numbers instead of texts: every node of a tree gets one that stands for it and all below it, so that two
/// values are compared in one step, whatever their size.
///
/// Equal values have equal numbers; members count in any order, and so do elements unless asked. Unequal
/// values share one with a probability of about 2^-64: the key is drawn anew for each process, so a document
/// cannot be made for it.

#include <cstdint>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_tree.h"

namespace tarn {

using Digest = std::uint64_t;

Digest digestOf(std::string_view text);
/// Of a pair, in that order.
Digest digestOf(Digest first, Digest second);

/// Of all nodes of a tree, by one pass over it.
class Digests {
 public:
  /// `ordered`: the order of elements counts. The tree is not empty, and outlives this.
  Digests(const Tree& tree, bool ordered);

  Digest operator[](const Node& node) const { return m_digests[indexOf(node)]; }

 private:
  std::size_t indexOf(const Node& node) const { return static_cast<std::size_t>(&node - m_root); }
  Digest ofContainer(const Tree& tree, const Node& node, bool ordered) const;

  const Node* m_root;
  std::vector<Digest> m_digests;
};

}  // namespace tarn
