// Why a template has a syntax error: what its author most likely did.

#include <fmt/format.h>

#include "tarn/template/tarn_template_rule.h"

namespace tarn {

namespace {

constexpr std::size_t kWordShown = 20;

class Cause {
 public:
  explicit Cause(const TemplateSource& source)
      : m_source(source),
        m_error(*source.error()),
        m_text(source.bytes()),
        m_at(std::min(m_error.offset, m_text.size())) {}

  std::string text() const {
    if (m_at == m_text.size()) {
      return atEnd();
    }
    if (m_source.nodes().empty()) {
      return atRoot();
    }
    const char next = m_text[m_at];
    const std::string word = wordAt();
    if (next == '/' || next == '#') {
      return "there are no comments: take it out";
    }
    if (next == '\'') {
      return "texts stand in double quotes";
    }
    if (next == '}' || next == ']') {
      return atBracket(next);
    }
    if (m_error.expected == ":") {
      return "a colon is missing between a name and its value" + brokenString();
    }
    if (m_error.expected == ",]") {
      return "a comma is missing before this" + brokenString();
    }
    return m_error.expected == "s" ? atName(word) : atValue(word);
  }

 private:
  std::string atEnd() const {
    if (m_text.empty()) {
      return "the template is empty";
    }
    if (m_source.nodes().empty()) {
      return "there is no object or array";
    }
    if (m_error.string < m_text.size() && m_text[m_error.string] == '"' && isOpenString()) {
      return "the string that begins at " + placeOf(m_error.string) + " has no closing quote";
    }
    return fmt::format("the text ends while the \"{}\" of {} is open", m_text[m_error.container],
                       placeOf(m_error.container));
  }

  /// Whether no string token came of the last quote.
  bool isOpenString() const {
    const std::size_t end = m_source.nodes().back().begin;
    return m_error.string >= end || m_error.offset > m_text.size();
  }

  std::string atRoot() const {
    if (m_text.starts_with("\xEF\xBB\xBF")) {
      return "a byte order mark stands first: save the template without one";
    }
    return "a template is an object or an array: it begins with \"{\" or \"[\"";
  }

  std::string atBracket(char bracket) const {
    const std::size_t before = m_text.find_last_not_of(" \t\r\n", m_at - 1);
    if (before != std::string::npos && m_text[before] == ',') {
      return "take out the comma before the bracket";
    }
    const char open = m_text[m_error.container];
    if ((open == '{') != (bracket == '}')) {
      const TemplateNode& last = m_source.nodes().back();
      const bool afterEmpty = last.isEmpty;
      return afterEmpty ? "the empty container at " + placeOf(last.begin) + " also ends the one around it"
                        : fmt::format("the \"{}\" of {} is not ended by \"{}\"", open,
                                      placeOf(m_error.container), bracket);
    }
    return "a value is missing before the bracket";
  }

  std::string atName(const std::string& word) const {
    return word.empty() ? "a name, a string, should stand here" + brokenString()
                        : "names stand in double quotes: write \"" + word + "\"";
  }

  std::string atValue(const std::string& word) const {
    if (word.empty()) {
      return "a value is missing or is no string";
    }
    const bool isLiteral = word == "true" || word == "false" || word == "null";
    const bool isNumber = word.find_first_not_of("0123456789+-.eE") == std::string::npos;
    const char* const what = isNumber    ? "numbers are not read: "
                             : isLiteral ? "true, false and null are not read: "
                                         : "texts stand in double quotes: ";
    return what + fmt::format("write \"{}\"", word);
  }

  /// Strings rarely go over line ends, or hold what stands between strings: their quote was forgotten.
  std::string brokenString() const {
    const std::size_t begin = m_error.string;
    const std::string_view last = std::string_view(m_text).substr(begin, m_at - begin);
    const bool broken =
        last.find('\n') != std::string_view::npos || last.find("\": ") != std::string_view::npos;
    return broken ? ", or the string that begins at " + placeOf(begin) + " has lost its quote" : "";
  }

  std::string wordAt() const {
    const std::size_t end = m_text.find_first_of(" \t\r\n,:}]\"", m_at);
    return m_text.substr(m_at, std::min(std::min(end, m_text.size()) - m_at, kWordShown));
  }

  std::string placeOf(std::size_t offset) const {
    const Place place = m_source.place(offset);
    return fmt::format("{}:{}", place.line, place.column);
  }

  const TemplateSource& m_source;
  const SyntaxError& m_error;
  const std::string& m_text;
  std::size_t m_at;
};

}  // namespace

std::string likelyCause(const TemplateSource& source) {
  return Cause(source).text();
}

}  // namespace tarn
