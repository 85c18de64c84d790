#include "platform/host/sqlcli/mirel_host_tokens.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}

/// Letters, digits, the underscore and every byte of a character beyond ASCII.
bool isWordByte(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value >= 0x80 || value == '_' || isDigit(byte) || ((value | 0x20) >= 'a' && (value | 0x20) <= 'z');
}

}  // namespace

Token Tokens::next() {
  if (!skipBlanksAndComments()) {
    return {Token::Kind::torn, m_position, m_text.size()};
  }
  if (m_position == m_text.size()) {
    return {Token::Kind::end, m_position, m_position};
  }
  const char first = m_text[m_position];
  if (isWordByte(first)) {
    return word();
  }
  if (m_dialect.backslashes && (first == '\'' || first == '"')) {
    return escapedText(first == '"' ? Token::Kind::name : Token::Kind::text, m_position + 1, first);
  }
  if (first == '\'') {
    return quoted(Token::Kind::text, '\'');
  }
  if (first == '"' || (first == '`' && m_dialect.backtickNames)) {
    return quoted(Token::Kind::name, first);
  }
  if (first == '[' && m_dialect.bracketNames) {
    return quoted(Token::Kind::name, ']');
  }
  if (first == '$' && m_dialect.dollarQuotes) {
    return dollarText();
  }
  return finish(Token::Kind::symbol, m_position + 1);
}

/// False when a comment never ends; the position stays at its beginning.
bool Tokens::skipBlanksAndComments() {
  for (;;) {
    m_position = std::min(m_text.find_first_not_of(kBlanks, m_position), m_text.size());
    if (atLineComment()) {
      m_position = std::min(m_text.find('\n', m_position), m_text.size());
    } else if (!at("/*")) {
      return true;
    } else if (!skipComment()) {
      return false;
    }
  }
}

bool Tokens::atLineComment() const {
  if (!m_dialect.numberSignComments) {
    return at("--");
  }
  const std::size_t behind = m_position + 2;
  return at("#") ||
         (at("--") && (behind >= m_text.size() || static_cast<unsigned char>(m_text[behind]) <= ' '));
}

bool Tokens::skipComment() {
  std::size_t depth = 1;
  std::size_t place = m_position + 2;
  while (depth > 0 && place < m_text.size()) {
    if (m_text.compare(place, 2, "*/") == 0) {
      --depth;
      place += 2;
    } else if (m_dialect.nestedComments && m_text.compare(place, 2, "/*") == 0) {
      ++depth;
      place += 2;
    } else {
      ++place;
    }
  }
  if (depth > 0) {
    return false;
  }
  m_position = place;
  return true;
}

Token Tokens::word() {
  std::size_t end = m_position + 1;
  while (end < m_text.size() && (isWordByte(m_text[end]) || (m_text[end] == '$' && m_dialect.dollarQuotes))) {
    ++end;
  }
  if (m_dialect.dollarQuotes && end == m_position + 1 && (at("E'") || at("e'"))) {
    return escapedText(Token::Kind::text, m_position + 2, '\'');
  }
  return finish(Token::Kind::word, end);
}

/// Up to the closing quote; a doubled one stands for itself.
Token Tokens::quoted(Token::Kind kind, char quote) {
  for (std::size_t end = m_text.find(quote, m_position + 1); end < m_text.size();
       end = m_text.find(quote, end + 2)) {
    if (end + 1 == m_text.size() || m_text[end + 1] != quote) {
      return finish(kind, end + 1);
    }
  }
  return {Token::Kind::torn, m_position, m_text.size()};
}

/// Up to the closing quote; a doubled one stands for itself, and so does one behind a backslash.
Token Tokens::escapedText(Token::Kind kind, std::size_t begin, char quote) {
  for (std::size_t end = begin; end < m_text.size(); ++end) {
    if (m_text[end] == '\\' || (m_text[end] == quote && m_text.substr(end + 1).starts_with(quote))) {
      ++end;
    } else if (m_text[end] == quote) {
      return finish(kind, end + 1);
    }
  }
  return {Token::Kind::torn, m_position, m_text.size()};
}

/// $tag$ ... $tag$, where the tag may be empty; a dollar sign with no second one is a symbol.
Token Tokens::dollarText() {
  std::size_t tagEnd = m_position + 1;
  while (tagEnd < m_text.size() && isWordByte(m_text[tagEnd])) {
    ++tagEnd;
  }
  if (tagEnd == m_text.size() || m_text[tagEnd] != '$' || isDigit(m_text[m_position + 1])) {
    return finish(Token::Kind::symbol, m_position + 1);
  }
  const std::string_view tag = m_text.substr(m_position, tagEnd + 1 - m_position);
  const std::size_t close = m_text.find(tag, tagEnd + 1);
  if (close == std::string_view::npos) {
    return {Token::Kind::torn, m_position, m_text.size()};
  }
  return finish(Token::Kind::text, close + tag.size());
}

Token Tokens::finish(Token::Kind kind, std::size_t end) {
  const Token token{kind, m_position, end};
  m_position = end;
  return token;
}

}  // namespace host
