#pragma once
/// A template as its author wrote it: read by the collector's rules, but with places, and not ended by a
/// syntax error.
///
///     const TemplateSource source(bytes);
///     for (const Node& node : source.nodes()) { ... source.key(node) ... source.text(node) ... }
///
/// Nodes lie one behind the other in document order; those of a container follow it up to `end`. The reading
/// is that of json/mirel_json_parser.h, rule by rule, its errors included: a test holds both together. Cost:
/// linear.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/document/tarn_document_reader.h"

namespace tarn {

/// The contents of a string between its quotes, escapes as they stand, and where they begin in the source.
struct Raw {
  std::string_view text;
  std::size_t offset = 0;
};

enum class NodeType : unsigned char { text, object, array };

struct TemplateNode {
  std::size_t keyBegin = 0, keyLength = 0;  ///< of a member
  std::size_t begin = 0, length = 0;        ///< a text's contents; a container's bracket
  std::uint32_t end = 0;                    ///< index of the node behind this one and all below it
  std::uint32_t parent = 0;                 ///< index; the root is its own
  NodeType type = NodeType::text;
  bool isMember = false;
  bool isEmpty = false;  ///< a container without a child, which ends its parent, too
};

/// Where the collector would end with status 255.
struct SyntaxError {
  std::string line;        ///< what it prints, without the line end
  Place place;             ///< as that line tells it
  std::size_t offset = 0;  ///< of the character that does not fit; a quote that stands last is counted twice
  std::size_t container = 0;  ///< of the innermost open bracket
  std::size_t string = 0;     ///< of the opening quote of the last string
  std::string expected;       ///< the tokens, each by its first character: "{[s"
  bool tooDeep = false;
};

class TemplateSource {
 public:
  /// Takes the bytes over. The text ends at the first NUL, as the collector's does.
  explicit TemplateSource(std::string bytes);

  const std::vector<TemplateNode>& nodes() const { return m_nodes; }
  Raw key(const TemplateNode& node) const { return raw(node.keyBegin, node.keyLength); }
  Raw text(const TemplateNode& node) const { return raw(node.begin, node.length); }

  const std::string& bytes() const { return m_bytes; }
  const std::optional<SyntaxError>& error() const { return m_error; }
  /// Behind what was read of the text.
  std::size_t end() const { return m_end; }
  /// Where a NUL cut the text, and how many bytes there were; nothing when none did.
  std::optional<std::size_t> nul() const { return m_nul; }

  /// Lines and columns as the collector counts them: a line feed inside a string begins no line.
  Place place(std::size_t offset) const;

 private:
  friend class TemplateReader;
  Raw raw(std::size_t begin, std::size_t length) const {
    return {std::string_view(m_bytes).substr(begin, length), begin};
  }

  std::string m_bytes;
  std::vector<TemplateNode> m_nodes;
  std::vector<std::size_t> m_lines = {0};  ///< where each begins
  std::optional<SyntaxError> m_error;
  std::optional<std::size_t> m_nul;
  std::size_t m_end = 0;
};

/// A raw text with its escapes undone, as the collector does it.
std::string unescaped(std::string_view raw);

}  // namespace tarn
