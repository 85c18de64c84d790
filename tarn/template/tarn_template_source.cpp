#include "tarn/template/tarn_template_source.h"

#include <algorithm>
#include <initializer_list>

#include "json/mirel_json_parser.h"
#include "json/mirel_json_scan.h"
#include "json/mirel_json_writer.h"

namespace tarn {

namespace {

constexpr std::string_view kPunctuation = "{}[],:";
constexpr std::size_t kDeepest = 1000;

}  // namespace

/// The grammar, one member a rule; false ends the loop of the rule around it. After an error every rule
/// returns false at once.
class TemplateReader {
 public:
  explicit TemplateReader(TemplateSource& source)
      : m_source(source), m_text(source.m_bytes.data()), m_size(source.m_bytes.size()) {}

  void read() {
    if (nextTokenIs(tokenOpenBrace)) {
      object({});
    } else if (nextTokenIs(tokenOpenBracket)) {
      array({});
    } else {
      fail({tokenOpenBrace, tokenOpenBracket});
    }
    m_source.m_end = std::min(m_position, m_size);
  }

 private:
  bool object(const TemplateNode& node) {
    const std::uint32_t index = add(node, NodeType::object);
    if (!open(tokenOpenBrace)) {
      return false;
    }
    if (nextTokenIs(tokenCloseBrace)) {
      return leaveEmpty(index);
    }
    bool more = true;
    do {
      more = pair(index);
    } while (more && nextTokenIs(tokenComma) && consume());
    return close(tokenCloseBrace, index);
  }

  bool array(const TemplateNode& node) {
    const std::uint32_t index = add(node, NodeType::array);
    if (!open(tokenOpenBracket)) {
      return false;
    }
    if (nextTokenIs(tokenCloseBracket)) {
      return leaveEmpty(index);
    }
    bool more = true;
    do {
      TemplateNode element;
      element.parent = index;
      more = value(element);
    } while (more && nextTokenIs(tokenComma) && consume());
    return close(tokenCloseBracket, index);
  }

  bool pair(std::uint32_t parent) {
    TemplateNode member;
    if (!expect(tokenString)) {
      return false;
    }
    member.parent = parent;
    member.isMember = true;
    member.keyBegin = beginOf(m_contents);
    member.keyLength = m_contents.contents.size();
    return expect(tokenColon) && value(member);
  }

  bool value(TemplateNode node) {
    if (nextTokenIs(tokenOpenBrace)) {
      return object(node);
    }
    if (nextTokenIs(tokenOpenBracket)) {
      return array(node);
    }
    if (!nextTokenIs(tokenString)) {
      return fail({tokenOpenBrace, tokenOpenBracket, tokenString});
    }
    consume();
    node.begin = beginOf(m_contents);
    node.length = m_contents.contents.size();
    add(node, NodeType::text);
    return true;
  }

  /// A text's node is whole at once; a container's begins at the bracket that stands at the position.
  std::uint32_t add(TemplateNode node, NodeType type) {
    const auto index = static_cast<std::uint32_t>(m_source.m_nodes.size());
    node.type = type;
    node.end = index + 1;
    if (type != NodeType::text) {
      node.begin = m_position;
      node.length = 1;
    }
    m_source.m_nodes.push_back(node);
    return index;
  }

  bool open(JsonTokenType bracket) {
    if (nextTokenIs(bracket) && m_open.size() == kDeepest) {
      fail({tokenString});
      m_source.m_error->tooDeep = true;
      return false;
    }
    m_open.push_back(m_position);
    return expect(bracket);
  }

  /// The closing bracket is left for the container around it.
  bool leaveEmpty(std::uint32_t index) {
    m_open.pop_back();
    m_source.m_nodes[index].isEmpty = true;
    return true;
  }

  bool close(JsonTokenType bracket, std::uint32_t index) {
    m_source.m_nodes[index].end = static_cast<std::uint32_t>(m_source.m_nodes.size());
    if (m_source.m_error) {
      return false;
    }
    if (atEnd() || (m_type != bracket && m_type != tokenComma)) {
      return fail({tokenComma, tokenCloseBracket});
    }
    m_open.pop_back();
    return nextTokenIs(bracket) && consume();
  }

  bool expect(JsonTokenType expected) { return nextTokenIs(expected) ? consume() : fail({expected}); }

  bool nextTokenIs(JsonTokenType expected) {
    skipBlanks();
    if (m_seen != m_position) {
      m_seenToken = recognise();
      m_seen = m_position;
    }
    return m_seenToken && m_type == expected;
  }

  bool consume() {
    m_position += m_length;
    return true;
  }

  void skipBlanks() {
    for (; !atEnd() && isBlank(m_text[m_position]); ++m_position) {
      if (m_text[m_position] == '\n') {
        m_source.m_lines.push_back(m_position + 1);
      }
    }
  }

  bool recognise() {
    const char character = m_size == 0 ? '\0' : m_text[std::min(m_position, m_size - 1)];
    if (atEnd()) {
      if (character == '"') {
        setString(2, {});
      }
      return false;
    }
    if (character == '"') {
      return recogniseString();
    }
    const std::size_t type = kPunctuation.find(character);
    if (type == std::string_view::npos) {
      return false;
    }
    m_type = static_cast<JsonTokenType>(type);
    m_length = 1;
    return true;
  }

  void setString(std::size_t length, const RawString& contents) {
    m_type = tokenString;
    m_length = length;
    m_contents = contents;
  }

  bool recogniseString() {
    m_string = m_position;
    const char* const end = m_text + m_size;
    const RawString found = scanString(m_text + m_position + 1, end);
    if (found.end() == end && end[-1] != '"') {
      m_position = m_size;
      return false;
    }
    setString(found.contents.size() + 2, found);
    return true;
  }

  std::size_t beginOf(const RawString& found) const {
    return static_cast<std::size_t>(found.contents.data() - m_text);
  }
  bool atEnd() const { return m_position >= m_size; }

  bool fail(std::initializer_list<JsonTokenType> expected) {
    if (m_source.m_error) {
      return false;
    }
    SyntaxError& error = m_source.m_error.emplace();
    error.offset = m_position;
    error.container = m_open.empty() ? 0 : m_open.back();
    error.string = m_string;
    error.place = {m_position, m_source.m_lines.size(), m_position - m_source.m_lines.back() + 1};
    for (const JsonTokenType type : expected) {
      error.line += error.line.empty() ? "Expecting one of: (\"" : ", \"";
      error.line += TokenStrings[type];
      error.line += '"';
      error.expected += *TokenStrings[type];
    }
    error.line += "); Actual: " + actual() + " on line " + std::to_string(error.place.line) + " column " +
                  std::to_string(error.place.column);
    return false;
  }

  std::string actual() const {
    const std::string text = m_type == tokenString ? "string \"" + unescaped(m_contents.contents)
                                                   : std::string("\"") + TokenStrings[m_type];
    return text + '"';
  }

  TemplateSource& m_source;
  const char* m_text;
  std::size_t m_size;
  std::size_t m_position = 0;
  JsonTokenType m_type = tokenString;
  std::size_t m_length = 0;
  RawString m_contents;      ///< of the last string token
  std::size_t m_string = 0;  ///< opening quote of the last string
  std::vector<std::size_t> m_open;
  std::size_t m_seen = std::string::npos;  ///< position that was looked at last, ...
  bool m_seenToken = false;                ///< ... and whether a token stands there
};

TemplateSource::TemplateSource(std::string bytes) : m_bytes(std::move(bytes)) {
  if (const std::size_t nul = m_bytes.find('\0'); nul != std::string::npos) {
    m_nul = nul;
    m_bytes.resize(nul);
  }
  TemplateReader(*this).read();
}

Place TemplateSource::place(std::size_t offset) const {
  const auto line = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
  return {offset, static_cast<std::uint64_t>(line - m_lines.begin()), offset - line[-1] + 1};
}

std::string unescaped(std::string_view raw) {
  if (raw.find('\\') == std::string_view::npos) {
    return std::string(raw);
  }
  return undoEscapes(raw).c_str();
}

}  // namespace tarn
