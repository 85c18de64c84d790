#pragma once
/// Reads a template's text into a value tree: the subset of JSON made of objects, arrays and strings.
///
///     JsonParser parser;
///     Value* root = parser.parse(text);   // owned by the caller
///
/// A syntax error prints one line on standard output that names what was expected and what was found, and
/// ends the process with status -1. Text behind the root's closing bracket is not read.
///
/// Rules of this reader that templates rely on:
/// - The closing bracket of an *empty* container is left for the container around it, which takes it as its
///   own. An empty container is therefore read as written only at the very end of the document.
/// - A character that begins no token leaves the token read before in place, and error lines show that one.
/// - Nothing is read at the end of the input, except that a quote standing last reads as an empty string.
/// - Escapes are undone as `reverseEscape` does (json/mirel_json_writer.h).
///
/// Containers may be nested 1,000 deep. Cost: linear in the text.

#include <initializer_list>
#include <memory>

#include "common/mirel_string.h"
#include "json/mirel_json_fold_reader.h"
#include "json/mirel_json_scan.h"

class KeyValuePair;
class Value;

/// The kinds of token; error lines print them by their names in `TokenStrings`.
enum class JsonTokenType { openBrace, closeBrace, openBracket, closeBracket, comma, colon, string };

/// The current token. One that has never been read is an empty string.
struct Token {
  JsonTokenType type = JsonTokenType::string;
  unsigned long length = 0;  ///< in characters of the input, quotes included
  RawString string;          ///< of the last string token
};

class JsonParser {
 public:
  JsonParser();
  JsonParser(const JsonParser&) = delete;
  JsonParser& operator=(const JsonParser&) = delete;

  /// The root, an object or an array. Does not come back from a syntax error.
  Value* parse(mirel_string text);

 private:
  // The grammar, one member a rule. False ends the loop of the rule around it without a message.
  bool parseObject(std::unique_ptr<Value>* out);
  bool parseArray(std::unique_ptr<Value>* out);
  bool parsePair(std::unique_ptr<KeyValuePair>* out);
  bool parseValue(std::unique_ptr<Value>* out);

  /// The object that begins at the position, if it can be folded; false when nothing was read.
  bool parseFolded(std::unique_ptr<Value>* out);

  /// Consumes the opening bracket of a container, unless it is nested too deep.
  void open(JsonTokenType bracket);
  /// Ends a container behind its last child.
  bool close(JsonTokenType bracket);

  /// Makes the token at the position the current one, without consuming it; whether it is as expected.
  bool nextTokenIs(JsonTokenType expected);
  bool consume();
  void expect(JsonTokenType expected);
  void skipWhitespace();

  bool recognise();
  bool recogniseString();
  bool atEnd() const { return m_position >= m_input.length(); }

  [[noreturn]] void fail(std::initializer_list<JsonTokenType> expected) const;
  [[noreturn]] static void printParseError(std::initializer_list<JsonTokenType> expected,
                                           JsonTokenType actual, const mirel_string& actualText,
                                           unsigned long line, unsigned long column);

  Token m_token;
  unsigned long m_line = 1;       ///< counted from 1, by the line feeds between tokens
  unsigned long m_lineBegin = 0;  ///< where it begins; columns are counted from there
  unsigned long m_position = 0;   ///< next character of the input
  mirel_string m_input;
  FoldReader m_foldReader;
  unsigned long m_depth = 0;                  ///< containers that are open
  unsigned long m_seen = mirel_string::npos;  ///< position that was looked at last, ...
  bool m_seenToken = false;                   ///< ... and whether a token stands there
};
