#include "json/mirel_json_writer.h"

#include <ostream>

#include "common/mirel_common_builder.h"
#include "json/mirel_json_value.h"

namespace {

void appendIndent(mirel_string_builder& out, unsigned long levels) {
  out.append(2 * levels, ' ');
}

void appendValue(mirel_string_builder& out, const Value* value, unsigned long indent) {
  if (value == nullptr)
    out.append("\"null\"");
  else
    value->write(out, indent);
}

void appendQuoted(mirel_string_builder& out, const mirel_string& text) {
  out.append('"');
  appendEscaped(out, text);
  out.append('"');
}

/// Ends a container: the separator behind its last child goes, if it has one.
void appendEnd(mirel_string_builder& out, bool hasChildren, unsigned long indent, char bracket) {
  if (hasChildren)
    out.removeLast(2);
  out.append('\n');
  appendIndent(out, indent);
  out.append(bracket);
}

mirel_string textOf(const Value& value, unsigned long indent) {
  mirel_string_builder out;
  value.write(out, indent);
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
  const char* rest = text.c_str();
  for (;;) {
    const unsigned long plain = strcspn(rest, "\\\n\r\"");
    out.append(rest, plain);
    rest += plain;
    if (*rest == '\0')
      return;
    out.append('\\');
    out.append(*rest == '\n' ? 'n' : *rest == '\r' ? 'r' : *rest);
    ++rest;
  }
}

mirel_string reverseEscape(const mirel_string& text) {
  return text.replace_all("\\\\", "\\")
      .replace_all("\\n", "\n")
      .replace_all("\\r", "\r")
      .replace_all("\\\"", "\"");
}

void PrimitiveValue::write(mirel_string_builder& out, unsigned long) const {
  appendQuoted(out, m_text);
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
  for (const KeyValuePair* member : m_members) {
    appendIndent(out, indent + 1);
    appendQuoted(out, member->getKey());
    out.append(": ");
    appendValue(out, member->getValue(), indent + 1);
    out.append(",\n");
  }
  appendEnd(out, !m_members.empty(), indent, '}');
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
