#include "json/mirel_json_writer.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "common/mirel_common_builder.h"
#include "json/mirel_json_scan.h"
#include "json/mirel_json_value.h"

namespace {

void appendIndent(mirel_string_builder& out, unsigned long levels) {
  out.append(2 * levels, ' ');
}

void appendValue(mirel_string_builder& out, const Value* value, unsigned long indent) {
  if (value == nullptr) {
    out.append("\"null\"");
  } else {
    value->write(out, indent);
  }
}

void appendQuoted(mirel_string_builder& out, std::string_view text) {
  out.append('"');
  appendEscaped(out, text.data(), text.size());
  out.append('"');
}

/// Most of a document are members like this; so they go out in one piece.
void appendAsIs(mirel_string_builder& out, unsigned long indent, std::string_view key,
                std::string_view text) {
  constexpr std::string_view kBetween = "\": \"";
  constexpr std::string_view kAfter = "\",\n";
  char* to = out.extend(2 * indent + 1 + key.size() + kBetween.size() + text.size() + kAfter.size());
  if (to == nullptr) {
    return;
  }
  to = std::fill_n(to, 2 * indent, ' ');
  *to++ = '"';
  for (const std::string_view piece : {key, kBetween, text, kAfter}) {
    to = std::copy(piece.begin(), piece.end(), to);
  }
}

/// Ends a container: the separator behind its last child goes, if it has one.
void appendEnd(mirel_string_builder& out, bool hasChildren, unsigned long indent, char bracket) {
  if (hasChildren) {
    out.removeLast(2);
  }
  out.append('\n');
  appendIndent(out, indent);
  out.append(bracket);
}

/// Two passes, so that the text, which may be as large as what it is made of, is allocated once.
mirel_string textOf(const Value& value, unsigned long indent) {
  mirel_string_builder out;
  out.startMeasuring();
  value.write(out, indent);
  out.endMeasuring();
  value.write(out, indent);
  return out.take();
}

/// What a backslash stands for together with what follows it; NUL for itself.
char escaped(std::string_view following) {
  if (following == "n" || following == "N") {
    return '\n';
  }
  if (following == "r" || following == "R") {
    return '\r';
  }
  return following == "\"" ? '"' : '\0';
}

/// Of a text in which no backslash follows another: then all kinds of escapes can be undone in one pass.
mirel_string withoutSingleEscapes(std::string_view text) {
  mirel_string_builder out;
  out.expect(text.size());
  unsigned long from = 0;
  for (unsigned long at = text.find('\\'); at < text.size(); at = text.find('\\', at + 1)) {
    if (const char character = escaped(text.substr(at + 1, 1))) {
      out.append(text.data() + from, at - from);
      out.append(character);
      from = at + 2;
    }
  }
  out.append(text.data() + from, text.size() - from);
  return out.take();
}

}  // namespace

mirel_string indent(unsigned long levels) {
  mirel_string_builder out;
  appendIndent(out, levels);
  return out.take();
}

mirel_string escapeJson(const mirel_string& text) {
  mirel_string_builder out;
  appendEscaped(out, text);
  return out.take();
}

void appendEscaped(mirel_string_builder& out, const mirel_string& text) {
  appendEscaped(out, text.c_str(), text.length());
}

void appendEscaped(mirel_string_builder& out, const char* text, unsigned long length) {
  const char* const end = text + length;
  for (;;) {
    const char* const special = endOfPlain(text, end);
    out.append(text, static_cast<unsigned long>(special - text));
    if (special == end) {
      return;
    }
    const char escape[] = {'\\', *special == '\n' ? 'n' : *special == '\r' ? 'r' : *special};
    out.append(escape, sizeof escape);
    text = special + 1;
  }
}

mirel_string unescapeJson(const char* text, unsigned long length) {
  const char* const end = text + length;
  if (memchr(text, '\\', length) == nullptr) {
    return {text, length};
  }
  mirel_string_builder out;
  while (const void* hit = memchr(text, '\\', static_cast<unsigned long>(end - text))) {
    const char* const escape = static_cast<const char*>(hit);
    out.append(text, static_cast<unsigned long>(escape - text));
    out.append(escape[1] == 'n' ? '\n' : escape[1] == 'r' ? '\r' : escape[1]);
    text = escape + 2;
  }
  out.append(text, static_cast<unsigned long>(end - text));
  return out.take();
}

mirel_string reverseEscape(const mirel_string& text) {
  return undoEscapes({text.c_str(), text.length()});
}

mirel_string undoEscapes(std::string_view text) {
  if (text.find("\\\\") == std::string_view::npos) {
    return withoutSingleEscapes(text);
  }
  return mirel_string(text.data(), text.size())
      .replace_all("\\\\", "\\")
      .replace_all("\\n", "\n")
      .replace_all("\\r", "\r")
      .replace_all("\\\"", "\"");
}

void PrimitiveValue::write(mirel_string_builder& out, unsigned long) const {
  appendQuoted(out, {m_text.c_str(), m_text.length()});
}

void KeyValuePair::write(mirel_string_builder& out, unsigned long indent) const {
  if (isUnescaped()) {
    appendAsIs(out, indent, key(), text());
    return;
  }
  appendIndent(out, indent);
  appendQuoted(out, key());
  out.append(": ");
  if (isPlain()) {
    appendQuoted(out, text());
  } else {
    appendValue(out, m_value, indent);
  }
  out.append(",\n");
}

void ArrayValue::write(mirel_string_builder& out, unsigned long indent) const {
  out.append("[\n");
  for (const Value* element : m_elements) {
    appendIndent(out, indent + 1);
    appendValue(out, element, indent + 1);
    out.append(",\n");
  }
  appendEnd(out, !m_elements.empty(), indent, ']');
}

void ObjectValue::write(mirel_string_builder& out, unsigned long indent) const {
  out.append("{\n");
  if (const auto* folded = std::get_if<FoldedMembers>(&m_members)) {
    folded->write(out, indent + 1);
  } else {
    for (const KeyValuePair* member : getValues()) {
      member->write(out, indent + 1);
    }
  }
  appendEnd(out, !empty(), indent, '}');
}

mirel_string PrimitiveValue::stringify(unsigned long indent) const {
  return textOf(*this, indent);
}
mirel_string ArrayValue::stringify(unsigned long indent) const {
  return textOf(*this, indent);
}
mirel_string ObjectValue::stringify(unsigned long indent) const {
  return textOf(*this, indent);
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
  return out << value.stringify(0);
}
std::ostream& operator<<(std::ostream& out, Value* value) {
  return out << *value;
}
