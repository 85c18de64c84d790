#include "json/mirel_json_folded.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "json/mirel_json_value.h"
#include "json/mirel_json_writer.h"

namespace {

constexpr std::string_view kAfterKey = "\": \"";
constexpr std::string_view kAfterText = "\",\n";

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

std::unique_ptr<KeyValuePair> memberOf(std::string_view line) {
  line.remove_prefix(1);
  const unsigned long keyLength = lengthOfEscaped(line);
  const std::string_view text = line.substr(keyLength + kAfterKey.size());
  return std::make_unique<KeyValuePair>(unescaped(line.substr(0, keyLength)),
                                        unescaped(text.substr(0, text.size() - kAfterText.size())));
}

}  // namespace

FoldedMembers::FoldedMembers(mirel_string lines, unsigned long count)
    : m_lines(std::move(lines)), m_count(count) {}

void FoldedMembers::write(mirel_string_builder& out, unsigned long indent) const {
  char* to = empty() ? nullptr : out.extend(m_lines.length() + 2 * indent * m_count);
  if (to == nullptr) {
    return;
  }
  const char* line = m_lines.c_str();
  const char* const linesEnd = line + m_lines.length();
  while (line != linesEnd) {
    const void* const lineFeed = memchr(line, '\n', static_cast<unsigned long>(linesEnd - line));
    const char* const end = static_cast<const char*>(lineFeed) + 1;
    to = std::copy(line, end, std::fill_n(to, 2 * indent, ' '));
    line = end;
  }
}

std::vector<std::unique_ptr<KeyValuePair>> FoldedMembers::unfold() const {
  std::vector<std::unique_ptr<KeyValuePair>> members;
  std::string_view rest(m_lines.c_str(), m_lines.length());
  while (!rest.empty()) {
    const unsigned long length = rest.find('\n') + 1;
    members.push_back(memberOf(rest.substr(0, length)));
    rest.remove_prefix(length);
  }
  return members;
}

void MemberLines::addKey(const mirel_string& key) {
  mirel_string_builder beginning;
  beginning.append('"');
  appendEscaped(beginning, key);
  beginning.append(kAfterKey.data(), kAfterKey.size());
  m_beginnings.push_back(beginning.take());
}

void MemberLines::clear() {
  m_lines.removeLast(m_lines.length());
  m_count = 0;
}

void MemberLines::add(unsigned long key, const char* text, unsigned long length) {
  m_lines.append(m_beginnings[key]);
  appendEscaped(m_lines, text, length);
  m_lines.append(kAfterText.data(), kAfterText.size());
  ++m_count;
}

FoldedMembers MemberLines::folded() const {
  return {mirel_string(m_lines.begin(), m_lines.length()), m_count};
}
