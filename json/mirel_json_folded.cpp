#include "json/mirel_json_folded.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "json/mirel_json_scan.h"
#include "json/mirel_json_value.h"
#include "json/mirel_json_writer.h"

namespace {

constexpr std::string_view kAfterKey = "\": ";
constexpr std::string_view kSeparator = ",\n";

// Texts begin and end with a quote.
bool opens(char lastOfLine) {
  return lastOfLine == '{' || lastOfLine == '[';
}
bool closes(char firstOfLine) {
  return firstOfLine == '}' || firstOfLine == ']';
}

mirel_string unescaped(std::string_view text) {
  return unescapeJson(text.data(), text.size());
}

/// How long the escaped text is whose closing quote stands in `text`.
unsigned long lengthOfEscaped(std::string_view text) {
  unsigned long length = 0;
  while (text[length] != '"') {
    length += text[length] == '\\' ? 2 : 1;
  }
  return length;
}

}  // namespace

FoldedMembers::FoldedMembers(mirel_string lines, unsigned long count, unsigned long levels)
    : m_lines(std::move(lines)), m_count(count), m_levels(levels) {}

void FoldedMembers::write(mirel_string_builder& out, unsigned long indent) const {
  if (empty()) {
    return;
  }
  char* to = out.extend(m_lines.length() + 2 * (indent * m_count + m_levels) + kSeparator.size());
  if (to == nullptr) {
    return;
  }
  const char* line = m_lines.c_str();
  const char* const linesEnd = line + m_lines.length();
  while (line != linesEnd) {
    const void* const lineFeed = memchr(line, '\n', static_cast<unsigned long>(linesEnd - line));
    const char* const end = lineFeed == nullptr ? linesEnd : static_cast<const char*>(lineFeed) + 1;
    indent -= closes(*line) ? 1 : 0;
    to = std::fill_n(to, 2 * indent, ' ');
    to = std::copy(line, end, to);
    indent += lineFeed != nullptr && opens(end[-2]) ? 1 : 0;
    line = end;
  }
  std::copy(kSeparator.begin(), kSeparator.end(), to);
}

/// Goes through the lines of folded members.
class FoldedMembers::Unfolding {
 public:
  explicit Unfolding(std::string_view lines) : m_rest(lines) {}

  std::vector<std::unique_ptr<KeyValuePair>> members() {
    std::vector<std::unique_ptr<KeyValuePair>> members;
    while (!m_rest.empty()) {
      const std::string_view line = take().substr(1);
      const unsigned long keyLength = lengthOfEscaped(line);
      std::unique_ptr<KeyValuePair> member(
          new KeyValuePair(unescaped(line.substr(0, keyLength)),
                           valueOf(line.substr(keyLength + kAfterKey.size())).release()));
      members.push_back(std::move(member));
    }
    return members;
  }

 private:
  /// The next line without its separator.
  std::string_view take() {
    const unsigned long length = std::min(m_rest.find('\n'), m_rest.size());
    std::string_view line = m_rest.substr(0, length);
    m_rest.remove_prefix(std::min(length + 1, m_rest.size()));
    if (line.ends_with(',')) {
      line.remove_suffix(1);
    }
    return line;
  }

  /// What begins with these characters, the last ones of the line just taken.
  std::unique_ptr<Value> valueOf(std::string_view text) {
    switch (text.front()) {
      case '{':
        return std::make_unique<ObjectValue>(takeObject());
      case '[':
        return takeArray();
      default:
        return std::make_unique<PrimitiveValue>(unescaped(text.substr(1, text.size() - 2)));
    }
  }

  FoldedMembers takeObject() {
    const char* const begin = m_rest.data();
    unsigned long count = 0;
    unsigned long levels = 0;
    unsigned long level = 0;
    std::string_view line = take();
    for (; level > 0 || !closes(line.front()); line = take()) {
      level -= closes(line.front()) ? 1 : 0;
      ++count;
      levels += level;
      level += opens(line.back()) ? 1 : 0;
    }
    return {mirel_string(begin, static_cast<unsigned long>(line.data() - 1 - begin)), count, levels};
  }

  std::unique_ptr<ArrayValue> takeArray() {
    auto array = std::make_unique<ArrayValue>();
    for (std::string_view line = take(); !closes(line.front()); line = take()) {
      array->push_back(valueOf(line).release());
    }
    return array;
  }

  std::string_view m_rest;
};

std::vector<std::unique_ptr<KeyValuePair>> FoldedMembers::unfold() const {
  return Unfolding({m_lines.c_str(), m_lines.length()}).members();
}

void MemberLines::clear() {
  m_lines.removeLast(m_lines.length());
  m_first = true;
  m_level = m_levels = 0;
  m_count = 1;
}

void MemberLines::next() {
  if (!std::exchange(m_first, false)) {
    m_lines.append(',');
    beginLine();
  }
}

void MemberLines::key(const char* name, unsigned long length) {
  text(name, length);
  m_lines.append(": ");
}

void MemberLines::key(const RawString& string) {
  text(string);
  m_lines.append(": ");
}

void MemberLines::text(const char* text, unsigned long length) {
  m_lines.append('"');
  appendEscaped(m_lines, text, length);
  m_lines.append('"');
}

void MemberLines::text(const RawString& string) {
  if (string.asWritten) {
    m_lines.append(string.contents - 1, string.length + 2);  // with its quotes
  } else {
    const mirel_string undone = string.text();
    text(undone.c_str(), undone.length());
  }
}

void MemberLines::open(char bracket) {
  m_lines.append(bracket);
  ++m_level;
  m_first = true;
  beginLine();
}

void MemberLines::close(char bracket) {
  --m_level;
  beginLine();
  m_lines.append(bracket);
  m_first = false;
}

void MemberLines::beginLine() {
  m_lines.append('\n');
  ++m_count;
  m_levels += m_level;
}

FoldedMembers MemberLines::folded() const {
  return {mirel_string(m_lines.begin(), m_lines.length()), m_count, m_levels};
}
