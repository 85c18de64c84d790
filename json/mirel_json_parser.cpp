#include "json/mirel_json_parser.h"

#include <cstdlib>
#include <iostream>
#include <utility>

#include "common/mirel_common_console.h"
#include "json/mirel_json_value.h"

namespace {

using enum JsonTokenType;

constexpr const char* TokenStrings[] = {"{", "}", "[", "]", ",", ":", "string"};
constexpr unsigned long kDeepest = 1000;

const char* nameOf(JsonTokenType type) {
  return TokenStrings[static_cast<int>(type)];
}

}  // namespace

JsonParser::JsonParser() : m_input("") {}

Value* JsonParser::parse(mirel_string text) {
  m_token.string = {};  // it stood in the former input
  m_input = std::move(text);
  m_foldReader.start(m_input.c_str() + m_input.length());
  m_line = 1;
  m_lineBegin = m_position = m_depth = 0;
  m_seen = mirel_string::npos;

  std::unique_ptr<Value> root;
  if (nextTokenIs(openBrace)) {
    parseObject(&root);
  } else if (nextTokenIs(openBracket)) {
    parseArray(&root);
  } else {
    fail({openBrace, openBracket});
  }
  return root.release();
}

bool JsonParser::parseObject(std::unique_ptr<Value>* out) {
  auto* object = new ObjectValue("");
  out->reset(object);
  open(openBrace);
  if (nextTokenIs(closeBrace)) {
    --m_depth;
    return true;
  }
  bool more = true;
  do {
    std::unique_ptr<KeyValuePair> pair;
    more = parsePair(&pair);
    object->addValue(pair.release());
  } while (more && nextTokenIs(comma) && consume());
  return close(closeBrace);
}

bool JsonParser::parseArray(std::unique_ptr<Value>* out) {
  auto* array = new ArrayValue;
  out->reset(array);
  open(openBracket);
  if (nextTokenIs(closeBracket)) {
    --m_depth;
    return true;
  }
  bool more = true;
  do {
    std::unique_ptr<Value> element;
    more = parseValue(&element);
    array->push_back(element.release());
  } while (more && nextTokenIs(comma) && consume());
  return close(closeBracket);
}

bool JsonParser::parsePair(std::unique_ptr<KeyValuePair>* out) {
  expect(string);
  mirel_string key = m_token.string.text();
  expect(colon);
  std::unique_ptr<Value> value;
  const bool more = parseValue(&value);
  out->reset(new KeyValuePair(std::move(key), value.release()));
  return more;
}

bool JsonParser::parseValue(std::unique_ptr<Value>* out) {
  if (nextTokenIs(openBrace)) {
    return parseFolded(out) || parseObject(out);
  }
  if (nextTokenIs(openBracket)) {
    return parseArray(out);
  }
  if (!nextTokenIs(string)) {
    fail({openBrace, openBracket, string});
  }
  consume();
  *out = std::make_unique<PrimitiveValue>(m_token.string.text());
  return true;
}

bool JsonParser::parseFolded(std::unique_ptr<Value>* out) {
  const char* const text = m_input.c_str();
  if (m_depth + FoldReader::kLevels > kDeepest || !m_foldReader.read(text + m_position)) {
    return false;
  }
  *out = std::make_unique<ObjectValue>(m_foldReader.folded());
  if (m_foldReader.lines() > 0) {
    m_line += m_foldReader.lines();
    m_lineBegin = static_cast<unsigned long>(m_foldReader.lastLine() - text);
  }
  m_position = static_cast<unsigned long>(m_foldReader.after() - text);
  m_token.type = closeBrace;
  return true;
}

void JsonParser::open(JsonTokenType bracket) {
  if (nextTokenIs(bracket) && m_depth == kDeepest) {
    fail({string});
  }
  expect(bracket);
  ++m_depth;
}

bool JsonParser::close(JsonTokenType bracket) {
  --m_depth;
  // Both kinds of container name the bracket here.
  if (atEnd() || (m_token.type != bracket && m_token.type != comma)) {
    fail({comma, closeBracket});
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
  return m_seenToken && m_token.type == expected;
}

bool JsonParser::consume() {
  m_position += m_token.length;
  return true;
}

void JsonParser::skipWhitespace() {
  for (; !atEnd() && isBlank(m_input.at(m_position)); ++m_position) {
    if (m_input.at(m_position) == '\n') {
      ++m_line;
      m_lineBegin = m_position + 1;
    }
  }
}

bool JsonParser::recognise() {
  const char character = m_input.at(m_position);
  if (atEnd()) {
    // Nothing at the end is ever what is expected, but a quote is shown as the string it would begin.
    if (character == '"') {
      m_token = {string, 2, {}};
    }
    return false;
  }
  if (character == '"') {
    return recogniseString();
  }
  for (JsonTokenType type : {openBrace, closeBrace, openBracket, closeBracket, comma, colon}) {
    if (character == *nameOf(type)) {
      m_token.type = type;
      m_token.length = 1;
      return true;
    }
  }
  return false;
}

bool JsonParser::recogniseString() {
  const char* const inputEnd = m_input.c_str() + m_input.length();
  RawString found;
  scanString(m_input.c_str() + m_position + 1, inputEnd, &found);
  if (found.end() == inputEnd && inputEnd[-1] != '"') {
    m_position = m_input.length();
    return false;
  }
  m_token = {string, found.length + 2, found};
  return true;
}

void JsonParser::fail(std::initializer_list<JsonTokenType> expected) const {
  printParseError(expected, m_token.type, m_token.string.text(), m_line, m_position - m_lineBegin);
}

void JsonParser::printParseError(std::initializer_list<JsonTokenType> expected, JsonTokenType actual,
                                 const mirel_string& actualText, unsigned long line, unsigned long column) {
  std::cout << "Expecting one of: (";
  const char* separator = "";
  for (JsonTokenType type : expected) {
    std::cout << separator << '"' << nameOf(type) << '"';
    separator = ", ";
  }
  std::cout << "); Actual: ";
  if (actual == string) {
    std::cout << "string \"" << actualText;
  } else {
    std::cout << '"' << nameOf(actual);
  }
  std::cout << "\" on line " << line << " column " << column + 1 << std::endl;
  complainOfLostOutput();
  std::exit(-1);
}
