#pragma once
/// The words of an SQL text.

#include <cstddef>
#include <string_view>

#include "platform/host/sqlcli/mirel_host_statement.h"

namespace host {

struct Token {
  enum class Kind {
    word,    ///< a keyword, an unquoted name, a number
    name,    ///< a quoted name, with its quotes
    text,    ///< a string, with its quotes
    symbol,  ///< one character of anything else
    end,     ///< nothing is left
    torn,    ///< a quote or a comment that never ends; nothing can be told from here on
  };
  Kind kind;
  std::size_t begin;
  std::size_t end;
};

/// Cuts a text into tokens, in one pass. Blanks and comments stand between them.
class Tokens {
 public:
  Tokens(std::string_view text, const Dialect& dialect) : m_text(text), m_dialect(dialect) {}

  /// The next token; at the end, or after a torn one, that one again.
  Token next();

 private:
  bool skipBlanksAndComments();
  bool skipComment();
  bool atLineComment() const;
  Token word();
  Token quoted(Token::Kind kind, char quote);
  Token escapedText(Token::Kind kind, std::size_t begin, char quote);
  Token dollarText();
  Token finish(Token::Kind kind, std::size_t end);
  bool at(std::string_view expected) const { return m_text.substr(m_position).starts_with(expected); }

  const std::string_view m_text;
  const Dialect& m_dialect;
  std::size_t m_position = 0;
};

}  // namespace host
