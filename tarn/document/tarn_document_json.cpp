#include "tarn/document/tarn_document_json.h"

#include <fmt/format.h>

#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

/// What stands for a byte below 0x20, for the quote and for the backslash.
void appendEscape(char byte, std::string& out) {
  constexpr std::string_view kNamed = "\b\t\n\f\r\"\\";
  constexpr std::string_view kNames = "btnfr\"\\";
  const std::size_t named = kNamed.find(byte);
  if (named == std::string_view::npos) {
    fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned char>(byte));
  } else {
    out += '\\';
    out += kNames[named];
  }
}

bool isPlain(char byte) {
  return static_cast<unsigned char>(byte) >= 0x20 && byte != '"' && byte != '\\';
}

}  // namespace

void appendJsonString(std::string_view text, std::string& out) {
  out += '"';
  while (!text.empty()) {
    const Utf8 next = nextUtf8(text);
    if (!next.valid) {
      out += kReplacement;
    } else if (next.length > 1 || isPlain(text[0])) {
      out += text.substr(0, next.length);
    } else {
      appendEscape(text[0], out);
    }
    text.remove_prefix(next.length);
  }
  out += '"';
}

void JsonText::separate() {
  if (!m_first) {
    m_text += ", ";
  }
  m_first = false;
}

JsonText& JsonText::open(char bracket) {
  separate();
  m_text += bracket;
  m_open += bracket == '{' ? '}' : ']';
  m_first = true;
  return *this;
}

JsonText& JsonText::end() {
  m_text += m_open.back();
  m_open.pop_back();
  m_first = false;
  return *this;
}

JsonText& JsonText::key(std::string_view name) {
  separate();
  appendJsonString(name, m_text);
  m_text += ": ";
  m_first = true;
  return *this;
}

JsonText& JsonText::element(std::string_view text) {
  separate();
  appendJsonString(text, m_text);
  return *this;
}

JsonText& JsonText::element(std::uint64_t number) {
  return raw(fmt::to_string(number));
}

JsonText& JsonText::element(double number) {
  return raw(fmt::format("{}", number));
}

JsonText& JsonText::element(bool flag) {
  return raw(flag ? "true" : "false");
}

JsonText& JsonText::null() {
  return raw("null");
}

JsonText& JsonText::raw(std::string_view json) {
  separate();
  m_text += json;
  return *this;
}

}  // namespace tarn
