#include "tarn/document/tarn_document_tree.h"

#include <algorithm>
#include <charconv>

namespace tarn {

namespace {

/// Makes nodes of events. The document is one block, so only what it ends in comes in more than one piece.
class TreeSink : public DocumentSink {
 public:
  TreeSink(std::vector<Node>& nodes, const Path& path) : m_nodes(nodes), m_path(path) {}

  bool open(Kind kind, const Place&) override {
    add(kind == Kind::object ? NodeKind::object : NodeKind::array, {});
    m_open.push_back(index() - 1);
    return true;
  }
  bool close(Kind, const Place&) override {
    closeOne();
    return true;
  }
  bool key(const Piece& piece, const Place&) override {
    m_key = piece.raw;
    m_keyIsPlain = piece.plain;
    return true;
  }
  bool text(const Piece& piece, const Place&) override {
    if (piece.ends) {
      if (!piece.plain) {
        escapedTexts.push_back(index());
      }
      add(NodeKind::text, piece.raw);
    }
    return true;
  }
  bool scalar(const Piece& piece, const Place&) override {
    if (piece.begins) {
      m_scalar = piece.raw.data();
    }
    m_scalarLength = piece.begins ? piece.raw.size() : m_scalarLength + piece.raw.size();
    if (piece.ends) {
      add(NodeKind::scalar, {m_scalar, m_scalarLength});
    }
    return true;
  }

  /// Containers that never ended.
  void closeAll() {
    while (!m_open.empty()) {
      closeOne();
    }
  }

  std::vector<std::uint32_t> escapedKeys, escapedTexts;  ///< nodes

 private:
  std::uint32_t index() const { return static_cast<std::uint32_t>(m_nodes.size()); }

  void add(NodeKind kind, std::string_view text) {
    if (!m_keyIsPlain) {
      escapedKeys.push_back(index());
    }
    if (!m_open.empty()) {
      ++m_nodes[m_open.back()].count;
    }
    m_nodes.push_back({m_key, text, 0, index() + 1, m_path.number(), kind});
    m_key = {};
    m_keyIsPlain = true;
  }
  void closeOne() {
    m_nodes[m_open.back()].end = index();
    m_open.pop_back();
  }

  std::vector<Node>& m_nodes;
  const Path& m_path;
  std::vector<std::uint32_t> m_open;
  std::string_view m_key;
  const char* m_scalar = nullptr;
  std::size_t m_scalarLength = 0;
  bool m_keyIsPlain = true;
};

/// How many there will be, by the first lines of a document that has a member or element on each, as mirel
/// writes it: growing costs as much as reading. Room that is not used costs nothing.
std::size_t likelyNodes(std::string_view bytes) {
  const std::string_view first = bytes.substr(0, 64 << 10);
  const auto lines = static_cast<std::size_t>(std::count(first.begin(), first.end(), '\n')) + 1;
  const std::size_t length = std::max<std::size_t>(16, first.size() / lines);
  return bytes.size() / length * 9 / 8;
}

/// A text is never longer than its raw bytes, so it goes where they are.
std::string_view undoneInPlace(std::string_view raw, std::string& bytes) {
  std::string text;
  appendUnescaped(raw, text);
  const auto at = static_cast<std::size_t>(raw.data() - bytes.data());
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
  return {raw.data(), text.size()};
}

}  // namespace

Tree::Tree(std::string bytes) : m_bytes(std::make_unique<std::string>(std::move(bytes))) {
  Path path(Path::Repeated::numbered);
  TreeSink sink(m_nodes, path);
  Reader reader(sink, path);
  m_nodes.reserve(likelyNodes(*m_bytes));
  reader.feed(*m_bytes);
  m_ending = reader.finish();
  sink.closeAll();
  for (const std::uint32_t node : sink.escapedKeys) {
    m_nodes[node].key = undoneInPlace(m_nodes[node].key, *m_bytes);
  }
  for (const std::uint32_t node : sink.escapedTexts) {
    m_nodes[node].text = undoneInPlace(m_nodes[node].text, *m_bytes);
  }
}

const Node* Tree::member(const Node& object, std::string_view name) const {
  if (object.kind != NodeKind::object) {
    return nullptr;
  }
  for (const Node& child : children(object)) {
    if (child.key == name) {
      return &child;
    }
  }
  return nullptr;
}

namespace {

std::string nameOf(const Node& member) {
  return std::string(member.key) + (member.repeat > 1 ? "#" + std::to_string(member.repeat) : "");
}

/// A part of a pointer, "~1" and "~0" undone.
std::string nameOf(std::string_view token) {
  std::string name;
  for (std::size_t at = 0; at < token.size(); ++at) {
    const bool isEscape =
        token[at] == '~' && at + 1 < token.size() && (token[at + 1] == '0' || token[at + 1] == '1');
    name += isEscape ? (token[++at] == '0' ? '~' : '/') : token[at];
  }
  return name;
}

}  // namespace

/// Null when there is none.
const Node* Tree::child(const Node& parent, std::string_view token) const {
  std::uint32_t wanted = 0;
  const char* const end = token.data() + token.size();
  const bool isIndex = std::from_chars(token.data(), end, wanted).ptr == end && !token.empty() &&
                       (token.size() == 1 || token[0] != '0');
  const std::string name = nameOf(token);
  std::uint32_t number = 0;
  for (const Node& node : children(parent)) {
    if (parent.kind == NodeKind::object ? nameOf(node) == name : isIndex && number == wanted) {
      return &node;
    }
    ++number;
  }
  return nullptr;
}

const Node* Tree::find(std::string_view pointer) const {
  const Node* node = empty() || (!pointer.empty() && pointer[0] != '/') ? nullptr : &root();
  while (node != nullptr && !pointer.empty()) {
    pointer.remove_prefix(1);
    const std::string_view token = pointer.substr(0, pointer.find('/'));
    pointer.remove_prefix(token.size());
    node = child(*node, token);
  }
  return node;
}

std::string Tree::pointer(const Node& node) const {
  std::string result;
  for (const Node* at = &root(); at != &node;) {
    const Node* const parent = at;
    std::uint32_t number = 0;
    for (const Node& below : children(*parent)) {
      if (&node < m_nodes.data() + below.end) {
        at = &below;
        break;
      }
      ++number;
    }
    result += '/';
    if (parent->kind == NodeKind::array) {
      result += std::to_string(number);
    } else {
      appendToken(nameOf(*at), result);
    }
  }
  return result;
}

}  // namespace tarn
