#pragma once
/// A whole document in memory, for the commands that need it at once (show, diff, page).
///
/// Nodes lie one behind the other in document order, so a walk is a loop and a part of a document is a range:
///
///     for (const Node& child : tree.children(node)) { ... child.key ... child.text ... }
///
/// Texts are views into the document's bytes where they need no undoing, else into the tree's own; both live
/// as long as the tree. What ends early or is damaged gives the tree of what is whole: containers closed, the
/// member that was being read left out.

#include <cstdint>
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
  std::uint32_t repeat = 1;  ///< 2 for the second member of its name in its object, and so on
  NodeKind kind = NodeKind::text;
};

class Tree {
 public:
  /// Takes the bytes over and reads them.
  explicit Tree(std::string bytes);
  Tree(Tree&&) = default;
  Tree& operator=(Tree&&) = default;

  const Ending& ending() const;
  /// False when not even a root was there.
  bool empty() const { return m_nodes.empty(); }
  const Node& root() const { return m_nodes.front(); }

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
  std::vector<Node> m_nodes;
};

}  // namespace tarn
