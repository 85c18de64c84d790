#include "json/mirel_json_parser.h"

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

#include "common/mirel_common_console.h"
#include "json/mirel_json_value.h"
#include "json/mirel_json_writer.h"

namespace {

constexpr unsigned long kDeepest = 1000;
/// The tokens of one character, as they are numbered.
constexpr std::string_view kSingle = "{}[],:";

/// What a string of the input stands for.
class Text {
 public:
  explicit Text(const RawString& string) : m_text(string.contents) {
    if (!string.plain) {
      m_undone = undoEscapes(string.contents);
      m_text = {m_undone->c_str(), m_undone->length()};
    }
  }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  operator std::string_view() const { return m_text; }

 private:
  std::string_view m_text;
  std::optional<mirel_string> m_undone;
};

}  // namespace

JsonParser::JsonParser() : m_input(mirel_string::within("", 0)) {}
JsonParser::~JsonParser() = default;

Value* JsonParser::parse(mirel_string text) {
  m_string = {};  // it stood in the former input
  m_input = std::move(text);
  m_line = 1;
  m_lineBegin = m_position = m_depth = 0;
  m_seen = mirel_string::npos;

  Value* root = nullptr;
  if (nextTokenIs(tokenOpenBrace)) {
    parseObject(&root);
  } else if (nextTokenIs(tokenOpenBracket)) {
    parseArray(&root);
  } else {
    fail({tokenOpenBrace, tokenOpenBracket});
  }
  dropConsumed();
  return root;
}

/// The tree is the larger part of what a document takes; its text need not stay beside it. Blanks are all
/// that follows most documents; where more does, the block stays: a tree that is whole needs no memory again.
void JsonParser::dropConsumed() {
  skipWhitespace();
  m_string = {};  // it stood in what goes
  m_input = atEnd() ? mirel_string::within("", 0) : std::move(m_input).substr(m_position, mirel_string::npos);
  m_seen -= m_position;
  m_lineBegin -= m_position;
  m_position = 0;
}

bool JsonParser::parseObject(Value** out) {
  auto object = std::make_unique<ObjectValue>();
  open(tokenOpenBrace);
  bool more = true;
  if (nextTokenIs(tokenCloseBrace)) {
    --m_depth;
  } else {
    const std::size_t first = m_members.size();
    do {
      KeyValuePair* pair = nullptr;
      more = parsePair(&pair);
      m_members.push_back(std::unique_ptr<KeyValuePair>(pair));
    } while (more && nextTokenIs(tokenComma) && consume());
    more = close(tokenCloseBrace);
    object->take(&m_members, first);
  }
  *out = object.release();
  return more;
}

bool JsonParser::parseArray(Value** out) {
  auto array = std::make_unique<ArrayValue>();
  open(tokenOpenBracket);
  bool more = true;
  if (nextTokenIs(tokenCloseBracket)) {
    --m_depth;
  } else {
    do {
      Value* element = nullptr;
      more = parseValue(&element);
      array->push_back(element);
    } while (more && nextTokenIs(tokenComma) && consume());
    more = close(tokenCloseBracket);
  }
  *out = array.release();
  return more;
}

bool JsonParser::parsePair(KeyValuePair** out) {
  expect(tokenString);
  const Text key(m_string);
  const bool plainKey = m_string.plain;
  expect(tokenColon);
  if (nextTokenIs(tokenString)) {
    consume();
    *out = KeyValuePair::of(key, Text(m_string), plainKey && m_string.plain);
    return true;
  }
  std::unique_ptr<KeyValuePair> pair(KeyValuePair::of(key));
  Value* value = nullptr;
  const bool more = parseValue(&value);
  pair->setValue(value);
  *out = pair.release();
  return more;
}

bool JsonParser::parseValue(Value** out) {
  if (nextTokenIs(tokenOpenBrace)) {
    return parseObject(out);
  }
  if (nextTokenIs(tokenOpenBracket)) {
    return parseArray(out);
  }
  if (!nextTokenIs(tokenString)) {
    fail({tokenOpenBrace, tokenOpenBracket, tokenString});
  }
  consume();
  *out = PrimitiveValue::of(Text(m_string));
  return true;
}

void JsonParser::open(JsonTokenType bracket) {
  if (nextTokenIs(bracket) && m_depth == kDeepest) {
    fail({tokenString});
  }
  expect(bracket);
  ++m_depth;
}

bool JsonParser::close(JsonTokenType bracket) {
  --m_depth;
  // Both kinds of container name the bracket here.
  if (atEnd() || (m_type != bracket && m_type != tokenComma)) {
    fail({tokenComma, tokenCloseBracket});
  }
  return nextTokenIs(bracket) && consume();
}

void JsonParser::expect(JsonTokenType expected) {
  if (!nextTokenIs(expected)) {
    fail({expected});
  }
  consume();
}

bool JsonParser::nextTokenIs(JsonTokenType expected) {
  skipWhitespace();
  if (m_seen != m_position) {
    m_seenToken = recognise();
    m_seen = m_position;
  }
  return m_seenToken && m_type == expected;
}

bool JsonParser::consume() {
  m_position += m_length;
  return true;
}

void JsonParser::skipWhitespace() {
  const char* const text = input().data();
  const char* const end = text + input().size();
  const char* at = text + m_position;
  while (at < end && isBlank(*at)) {
    if (*at++ == '\n') {
      ++m_line;
      m_lineBegin = static_cast<unsigned long>(at - text);
      at = endOfSpaces(at, end);
    }
  }
  m_position = static_cast<unsigned long>(at - text);
}

bool JsonParser::recognise() {
  if (atEnd()) {
    // Nothing at the end is ever what is expected, but a quote is shown as the string it would begin.
    if (input().ends_with('"')) {
      m_type = tokenString;
      m_length = 2;
      m_string = {};
    }
    return false;
  }
  const char character = input()[m_position];
  if (character == '"') {
    return recogniseString();
  }
  const std::size_t type = kSingle.find(character);
  if (type == std::string_view::npos) {
    return false;
  }
  m_type = static_cast<JsonTokenType>(type);
  m_length = 1;
  return true;
}

bool JsonParser::recogniseString() {
  const char* const inputEnd = input().data() + input().size();
  const RawString found = scanString(input().data() + m_position + 1, inputEnd);
  if (found.end() == inputEnd && inputEnd[-1] != '"') {
    m_position = input().size();
    return false;
  }
  m_type = tokenString;
  m_length = found.contents.size() + 2;
  m_string = found;
  return true;
}

Token JsonParser::token() const {
  const Text contents(m_string);
  const std::string_view text = m_type == tokenString ? contents : std::string_view(TokenStrings[m_type]);
  return {mirel_string(text.data(), text.size()), m_type, m_length};
}

void JsonParser::fail(const std::vector<JsonTokenType>& expected) const {
  printParseError(expected, m_type, token().text, m_line, m_position - m_lineBegin);
}

void JsonParser::printParseError(const std::vector<JsonTokenType>& expected, JsonTokenType actual,
                                 const mirel_string& actualText, unsigned long line, unsigned long column) {
  std::cout << "Expecting one of: (";
  const char* separator = "";
  for (const JsonTokenType type : expected) {
    std::cout << separator << '"' << TokenStrings[type] << '"';
    separator = ", ";
  }
  std::cout << "); Actual: ";
  if (actual == tokenString) {
    std::cout << "string \"" << actualText;
  } else {
    std::cout << '"' << TokenStrings[actual];
  }
  std::cout << "\" on line " << line << " column " << column + 1 << std::endl;
  complainOfLostOutput();
  std::exit(-1);
}
