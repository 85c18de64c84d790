#pragma once
/// Reads a template's text into a value tree: the subset of JSON made of objects, arrays and strings.
///
///     JsonParser parser;
///     Value* root = parser.parse(text);   // owned by the caller
///
/// A syntax error prints one line on standard output that names what was expected and what was found, and
/// ends the process with status -1.
///
/// Rules of this reader that templates rely on:
/// - The closing bracket of an *empty* container is left for the container around it, which takes it as its
///   own. An empty container is therefore read as written only at the very end of the document.
/// - A character that begins no token leaves the token read before in place, and error lines show that one.
/// - Nothing is read at the end of the input, except that a quote standing last reads as an empty string.
/// - Escapes are undone as `reverseEscape` does (json/mirel_json_writer.h).
///
/// Containers may be nested 1,000 deep. Cost: linear in the text.

#include <memory>
#include <string_view>
#include <vector>

#include "common/mirel_string.h"
#include "json/mirel_json_scan.h"

class KeyValuePair;
class Value;

/// The kinds of token.
enum JsonTokenType {
  tokenOpenBrace,
  tokenCloseBrace,
  tokenOpenBracket,
  tokenCloseBracket,
  tokenComma,
  tokenColon,
  tokenString,
};
/// What error lines call them.
inline constexpr const char* TokenStrings[] = {"{", "}", "[", "]", ",", ":", "string"};

struct Token {
  mirel_string text;  ///< of a string: what it stands for, without quotes and escapes
  JsonTokenType type;
  unsigned long length;  ///< in characters of the input, quotes included
};

class JsonParser {
 public:
  JsonParser();
  ~JsonParser();
  JsonParser(const JsonParser&) = delete;
  JsonParser& operator=(const JsonParser&) = delete;

  /// The root, an object or an array, owned by the caller. What follows it is the input that is left to the
  /// functions below; what was read of the text is given back.
  Value* parse(mirel_string text);

  // The grammar, one member a rule; each begins at the next token. What it stores is the caller's. False ends
  // the loop of the rule around it without a message.
  bool parseObject(Value** out);
  bool parseArray(Value** out);
  bool parsePair(KeyValuePair** out);
  bool parseValue(Value** out);

  /// Makes the token behind the blanks the current one, without passing over it; whether it is as expected.
  bool nextTokenIs(JsonTokenType expected);
  /// Passes over the current token; true.
  bool consume();
  void skipWhitespace();
  /// The current token; an empty string when none has been read.
  Token token() const;

  /// Prints the error line and ends the process; `column` is counted from 0.
  [[noreturn]] static void printParseError(const std::vector<JsonTokenType>& expected, JsonTokenType actual,
                                           const mirel_string& actualText, unsigned long line,
                                           unsigned long column);

 private:
  /// Consumes the opening bracket of a container, unless it is nested too deep.
  void open(JsonTokenType bracket);
  /// Ends a container behind its last child.
  bool close(JsonTokenType bracket);

  void expect(JsonTokenType expected);
  bool recognise();
  bool recogniseString();
  std::string_view input() const { return {m_input.c_str(), m_input.length()}; }
  bool atEnd() const { return m_position >= m_input.length(); }
  void dropConsumed();
  [[noreturn]] void fail(const std::vector<JsonTokenType>& expected) const;

  JsonTokenType m_type = tokenString;  ///< of the current token
  unsigned long m_length = 0;
  RawString m_string;             ///< the current token, if it is a string
  unsigned long m_line = 1;       ///< counted from 1, by the line feeds between tokens
  unsigned long m_lineBegin = 0;  ///< where it begins; columns are counted from there
  unsigned long m_position = 0;   ///< next character of the input
  mirel_string m_input;
  std::vector<std::unique_ptr<KeyValuePair>> m_members;  ///< of the objects that are open
  unsigned long m_depth = 0;                             ///< containers that are open
  unsigned long m_seen = mirel_string::npos;             ///< position that was looked at last, ...
  bool m_seenToken = false;                              ///< ... and whether a token stands there
};
