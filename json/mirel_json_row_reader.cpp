#include "json/mirel_json_row_reader.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "json/mirel_json_scan.h"
#include "json/mirel_json_value.h"

namespace {

/// A place in the text, passed over token by token.
struct Cursor {
  const char* at;
  const char* end;
  unsigned long lines = 0;
  const char* lastLine = nullptr;

  void skipBlanks() {
    for (; isBlank(*at); ++at) {
      if (*at == '\n') {
        ++lines;
        lastLine = at + 1;
      }
    }
  }
  bool take(char token) {
    skipBlanks();
    return *at++ == token;
  }
  bool takeString(const mirel_string& plain) {
    const unsigned long length = plain.length();
    if (!take('"') || static_cast<unsigned long>(end - at) <= length ||
        memcmp(at, plain.c_str(), length) != 0 || at[length] != '"') {
      return false;
    }
    at += length + 1;
    return true;
  }
};

/// Escapes that overlap multiply a text when they are undone; that should not happen twice.
bool mayMultiply(const RawString& value) {
  constexpr std::string_view overlap = "\\\\\\";
  return std::string_view(value.contents, value.length).find(overlap) != std::string_view::npos;
}

}  // namespace

RowReader::RowReader(const ObjectValue& example) {
  std::vector<mirel_string> names;
  for (const KeyValuePair* member : example.getValues()) {
    const mirel_string& key = member->getKey();
    const char* const end = key.c_str() + key.length();
    if (endOfPlain(key.c_str(), end) != end ||
        dynamic_cast<const PrimitiveValue*>(member->getValue()) == nullptr) {
      return;
    }
    names.push_back(key);
  }
  if (!names.empty()) {
    m_columns = std::make_shared<const RowColumns>(std::move(names));
  }
}

bool RowReader::read(const char* text, const char* end) {
  if (m_columns == nullptr) {
    return false;
  }
  m_values.clear();
  Cursor cursor{text + 1, end};
  const std::vector<mirel_string>& names = m_columns->names();
  for (unsigned long column = 0; column < names.size(); ++column) {
    if (!cursor.takeString(names[column]) || !cursor.take(':') || !cursor.take('"')) {
      return false;
    }
    const RawString value = scanString(cursor.at, end);
    if (value.plain) {
      m_values.appendPlain(value.contents, value.length);
    } else if (mayMultiply(value)) {
      return false;
    } else {
      const mirel_string undone = value.text();
      m_values.append(undone.c_str(), undone.length());
    }
    cursor.at = value.end() + 1;
    if (cursor.at >= end || !cursor.take(column + 1 < names.size() ? ',' : '}')) {
      return false;
    }
  }
  m_after = cursor.at;
  m_lines = cursor.lines;
  m_lastLine = cursor.lastLine;
  return true;
}

Row RowReader::row() const {
  return m_values.row(m_columns);
}
