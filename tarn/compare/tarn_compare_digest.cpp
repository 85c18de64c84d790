#include "tarn/compare/tarn_compare_digest.h"

#include <cstring>
#include <random>

namespace tarn {

namespace {

constexpr Digest kFirst = 0x9E3779B97F4A7C15, kSecond = 0xD1B54A32D192ED03, kThird = 0x8CB92BA72F3D8DD7;

Digest drawnKey() {
  std::random_device source;
  return static_cast<Digest>(source()) << 32 | source();
}

const Digest kKey = drawnKey();

/// Both halves of the product of 128 bits: every bit of either factor reaches every bit of the result.
Digest folded(Digest one, Digest other) {
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(one) * other;
  return static_cast<Digest>(product) ^ static_cast<Digest>(product >> 64);
}

Digest load(const char* bytes, std::size_t count) {
  Digest word = 0;
  memcpy(&word, bytes, count);
  return word;
}

Digest ofLeaf(const Node& node) {
  return digestOf(node.kind == NodeKind::text ? kFirst : kSecond, digestOf(node.text));
}

Digest ofMember(const Node& member, Digest value) {
  return digestOf(digestOf(member.key) + member.repeat, value);
}

}  // namespace

Digest digestOf(std::string_view text) {
  constexpr std::size_t kWord = sizeof(Digest);
  Digest digest = kKey ^ folded(text.size() ^ kFirst, kSecond);
  while (text.size() > 2 * kWord) {
    digest = folded(load(text.data(), kWord) ^ kSecond, load(text.data() + kWord, kWord) ^ digest);
    text.remove_prefix(2 * kWord);
  }
  const std::size_t first = std::min(text.size(), kWord);
  const Digest head = load(text.data(), first);
  const Digest tail = load(text.data() + first, text.size() - first);
  return folded(folded(head ^ kSecond, tail ^ digest), kThird ^ kKey);
}

Digest digestOf(Digest first, Digest second) {
  return folded(folded(first ^ kKey, kFirst) ^ second, kThird);
}

Digests::Digests(const Tree& tree, bool ordered) : m_root(&tree.root()), m_digests(m_root->end) {
  for (std::size_t index = m_digests.size(); index-- > 0;) {  // what is below comes first
    const Node& node = m_root[index];
    const bool leaf = node.kind == NodeKind::text || node.kind == NodeKind::scalar;
    m_digests[index] = leaf ? ofLeaf(node) : ofContainer(tree, node, ordered);
  }
}

/// Sums do not know in which order they were made.
Digest Digests::ofContainer(const Tree& tree, const Node& node, bool ordered) const {
  const bool isObject = node.kind == NodeKind::object;
  Digest sum = isObject ? kFirst : kThird;
  for (const Node& child : tree.children(node)) {
    const Digest value = (*this)[child];
    if (isObject) {
      sum += ofMember(child, value);
    } else {
      sum = ordered ? digestOf(sum, value) : sum + digestOf(kSecond, value);
    }
  }
  return digestOf(sum, node.count);
}

}  // namespace tarn
