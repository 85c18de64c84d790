#include "json/mirel_json_fold_reader.h"

#include <string_view>

#include "json/mirel_json_scan.h"

namespace {

/// Bytes of an object that is folded: unfolding copies what stays folded.
constexpr unsigned long kLargest = 16UL << 10;

/// Escapes that overlap multiply a text when they are undone; that should not happen twice.
bool mayMultiply(const RawString& string) {
  constexpr std::string_view kOverlap = "\\\\\\";
  return std::string_view(string.contents, string.length).find(kOverlap) != std::string_view::npos;
}

}  // namespace

void FoldReader::start(const char* end) {
  m_end = end;
  m_stuck = nullptr;
}

bool FoldReader::read(const char* text) {
  if (text < m_stuck) {
    return false;
  }
  m_members.clear();
  m_lines = 0;
  m_at = text;
  if (take('{') && readMembers(1)) {
    return true;
  }
  m_stuck = m_at;
  return false;
}

bool FoldReader::readMembers(unsigned long level) {
  do {
    RawString key;
    if (!readString(&key)) {
      return false;
    }
    m_members.next();
    m_members.key(key);
    if (!take(':') || !readValue(level)) {
      return false;
    }
  } while (take(','));
  return take('}');
}

bool FoldReader::readElements(unsigned long level) {
  do {
    m_members.next();
    if (!readValue(level)) {
      return false;
    }
  } while (take(','));
  return take(']');
}

bool FoldReader::readValue(unsigned long level) {
  skipBlanks();
  if (*m_at == '"') {
    RawString string;
    if (!readString(&string)) {
      return false;
    }
    m_members.text(string);
    return true;
  }
  const bool object = *m_at == '{';
  if (level == kLevels || (!take('{') && !take('['))) {
    return false;
  }
  m_members.open(object ? '{' : '[');
  const bool read = object ? readMembers(level + 1) : readElements(level + 1);
  m_members.close(object ? '}' : ']');
  return read;
}

bool FoldReader::readString(RawString* string) {
  if (!take('"')) {
    return false;
  }
  scanString(m_at, m_end, string);
  m_at = string->end() + 1;
  return m_at < m_end && m_members.length() + string->length <= kLargest &&
         (string->asWritten || !mayMultiply(*string));
}

/// Passes over the token when it is the next one.
bool FoldReader::take(char token) {
  skipBlanks();
  if (*m_at != token) {
    return false;
  }
  ++m_at;
  return true;
}

void FoldReader::skipBlanks() {
  while (isBlank(*m_at)) {
    if (*m_at++ == '\n') {
      ++m_lines;
      m_lastLine = m_at;
      m_at = endOfSpaces(m_at, m_end);
    }
  }
}
