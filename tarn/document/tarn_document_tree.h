#pragma once
/// A whole document in memory, for the commands that need it at once (show, diff, page).
///
/// Nodes lie one behind the other in document order, so a walk is a loop and a part of a document is a range:
///
///     for (const Node& child : tree.children(node)) { ... child.key ... child.text ... }
///
/// Texts are views into the document's bytes, where escapes were undone in place; they live as long as the
/// tree, which can be moved. 48 bytes a node. What ends early or is damaged gives the tree of what is whole:
/// containers closed, the member that was being read left out.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_reader.h"

namespace tarn {

enum class NodeKind : unsigned char { object, array, text, scalar };

struct Node {
  std::string_view key;  ///< of a member: its name, escapes undone; empty for elements and the root
  std::string_view
      text;  ///< of a text: escapes undone; of a scalar (number, true, false, null): as it stands
  std::uint32_t count = 0;   ///< members or elements
  std::uint32_t end = 0;     ///< index of the node behind this one and all below it
  std::uint32_t repeat = 1;  ///< 2 for the member that is called NAME#2 in its object, and so on
  NodeKind kind = NodeKind::text;
};

class Tree {
 public:
  /// Takes the bytes over and reads them.
  explicit Tree(std::string bytes);

  const Ending& ending() const { return m_ending; }
  /// False when not even a root was there.
  bool empty() const { return m_nodes.empty(); }
  const Node& root() const { return m_nodes.front(); }
  /// All of them, the root first.
  const std::vector<Node>& nodes() const { return m_nodes; }

  /// A range over the members or elements of a node, in order.
  class Children;
  Children children(const Node& node) const;

  /// The member of that name, the first of several; null when there is none, or the node is no object.
  const Node* member(const Node& object, std::string_view name) const;
  /// The node at a JSON Pointer (RFC 6901, `NAME#2` for repeated names); null when there is none.
  const Node* find(std::string_view pointer) const;
  /// The pointer of a node of this tree.
  std::string pointer(const Node& node) const;

 private:
  const Node* child(const Node& parent, std::string_view token) const;

  std::unique_ptr<std::string> m_bytes;
  std::vector<Node> m_nodes;
  Ending m_ending;
};

class Tree::Children {
 public:
  class Iterator {
   public:
    Iterator(const Node* first, const Node* at) : m_first(first), m_at(at) {}
    const Node& operator*() const { return *m_at; }
    const Node* operator->() const { return m_at; }
    Iterator& operator++() {
      m_at = m_first + m_at->end;
      return *this;
    }
    bool operator==(const Iterator& other) const { return m_at == other.m_at; }

   private:
    const Node *m_first, *m_at;
  };

  Children(const Node* first, const Node& parent)
      : m_first(first), m_begin(&parent + 1), m_end(first + parent.end) {}
  Iterator begin() const { return {m_first, m_begin}; }
  Iterator end() const { return {m_first, m_end}; }

 private:
  const Node *m_first, *m_begin, *m_end;
};

inline Tree::Children Tree::children(const Node& node) const {
  return {m_nodes.data(), node};
}

}  // namespace tarn
