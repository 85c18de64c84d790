#include "tarn/document/tarn_document_json.h"

#include <fmt/format.h>

#include <algorithm>

#include "common/mirel_common_eight.h"
#include "tarn/document/tarn_document_shown.h"
#include "tarn/document/tarn_document_utf8.h"

using namespace eight;

namespace tarn {

namespace {

constexpr std::size_t kPartAtLeast = 64 << 10;

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

/// Beyond U+FFFF as a surrogate pair.
void appendNumber(char32_t character, std::string& out) {
  const auto number = static_cast<unsigned>(character);
  if (number < 0x10000) {
    fmt::format_to(std::back_inserter(out), "\\u{:04x}", number);
  } else {
    fmt::format_to(std::back_inserter(out), "\\u{:04x}\\u{:04x}", 0xD7C0 + (number >> 10),
                   0xDC00 + (number & 0x3FF));
  }
}

/// The first character of a text that is going to be seen. Returns how many bytes it takes.
std::size_t appendSafe(std::string_view text, std::string& out) {
  const Utf8 next = nextUtf8(text);
  if (!next.valid) {
    out += kReplacement;
  } else if (text[0] == '"' || text[0] == '\\' || next.character < 0x20) {
    appendEscape(text[0], out);
  } else if (isHidden(next.character)) {
    appendNumber(next.character, out);
  } else {
    out += text.substr(0, next.length);
  }
  return next.length;
}

bool isPlain(char byte) {
  return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\';
}

bool isAscii(char byte) {
  return (static_cast<unsigned char>(byte) - 0x20U) < 0x60;
}

/// Where the run of printable ASCII ends.
std::size_t endOfAscii(std::string_view text) {
  std::size_t at = 0;
  for (; text.size() - at >= 8; at += 8) {
    const Eight bytes = load(text.data() + at);
    if (const Eight others = marksBelow(bytes, 0x20) | (bytes & kHighest); others != 0) {
      return at + static_cast<std::size_t>(before(others));
    }
  }
  while (at < text.size() && isAscii(text[at])) {
    ++at;
  }
  return at;
}

}  // namespace

void appendStrict(std::string_view raw, std::string& out) {
  while (!raw.empty()) {
    const std::size_t run = endOfAscii(raw);
    out += raw.substr(0, run);
    raw.remove_prefix(run);
    if (raw.empty()) {
      return;
    }
    const Utf8 next = nextUtf8(raw);
    if (!next.valid) {
      out += kReplacement;
    } else if (next.length > 1) {
      out += raw.substr(0, next.length);
    } else {
      appendEscape(raw[0], out);
    }
    raw.remove_prefix(next.length);
  }
}

bool isStrict(std::string_view raw) {
  for (;;) {
    raw.remove_prefix(endOfAscii(raw));
    const Utf8 next = raw.empty() ? Utf8{} : nextUtf8(raw);
    if (raw.empty() || !next.valid || next.length == 1) {
      return raw.empty();
    }
    raw.remove_prefix(next.length);
  }
}

void appendJsonString(std::string_view text, std::string& out) {
  out += '"';
  while (!text.empty()) {
    const auto run =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
    out += text.substr(0, run);
    text.remove_prefix(run);
    text.remove_prefix(text.empty() ? 0 : appendSafe(text, out));
  }
  out += '"';
}

void JsonText::separate() {
  if (m_take && m_text.size() > kPartAtLeast) {
    m_take(m_text);
    m_text.clear();
  }
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
