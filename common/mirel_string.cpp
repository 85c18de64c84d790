#include "common/mirel_string.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <ostream>

#include "common/mirel_common_builder.h"
#include "common/mirel_common_memory.h"
#include "platform/services.h"

namespace {

/// What the decimal form of any number fits into.
constexpr unsigned long kNumberSize = 38;
/// Occurrences that overlap multiply a text; beyond this many bytes it counts as one too large for memory.
constexpr unsigned long kLargestMultiplied = 1UL << 30;

/// strncpy with a guaranteed terminator: copies up to `size` - 1 characters and NUL-pads the rest.
void copyBounded(char* dest, const char* source, unsigned long size) {
  const unsigned long count = strnlen(source, size - 1);
  memmove(dest, source, count);
  memset(dest + count, 0, size - count);
}

}  // namespace

const char mirel_string::s_terminator = '\0';

mirel_string::mirel_string(const char* s) : mirel_string(s, s == nullptr ? 0 : strlen(s)) {}

mirel_string::mirel_string(const char* s, unsigned long length) {
  const unsigned long count = s == nullptr ? 0 : strnlen(s, length);
  if (strAlloc(count + kTail, count) && count > 0) {
    memcpy(m_buffer, s, count);
  }
}

mirel_string::mirel_string(int number) {
  format("%d", number);
}
mirel_string::mirel_string(long number) {
  format("%ld", number);
}
mirel_string::mirel_string(unsigned int number) {
  format("%u", number);
}
mirel_string::mirel_string(unsigned long number) {
  format("%lu", number);
}

/// The capacity told afterwards is smaller than the block, so that copies take only what they need.
template <class Number>
void mirel_string::format(const char* pattern, Number number) {
  if (!strAlloc(kNumberSize, 0)) {
    return;
  }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int count = ossSnprintf(m_buffer, kNumberSize, pattern, number);
#pragma GCC diagnostic pop
  if (count < 0) {  // what but memory could stop a number
    ++memoryLosses;
    strFree();
    m_capacity = 0;
    return;
  }
  m_length = static_cast<unsigned long>(count);
  m_capacity = m_length + kTail;
}

mirel_string::mirel_string(char* block, unsigned long length, unsigned long capacity)
    : m_capacity(capacity), m_length(length), m_buffer(block) {}

mirel_string::mirel_string(const mirel_string& other) {
  copyFrom(other);
}

mirel_string::mirel_string(mirel_string&& other) noexcept
    : m_capacity(other.m_capacity), m_length(other.m_length), m_buffer(other.m_buffer) {
  other.m_capacity = other.m_length = 0;
  other.m_buffer = nullptr;
}

// The text is not written to: that is only done to a text's own block.
mirel_string mirel_string::within(const char* text, unsigned long length) {
  return {const_cast<char*>(text), length, kNotOwned};
}

mirel_string::~mirel_string() {
  strFree();
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): its outcome is part of the interface
mirel_string& mirel_string::operator=(const mirel_string& other) {
  strFree();
  copyFrom(other);
  return *this;
}

mirel_string& mirel_string::operator=(mirel_string&& other) noexcept {
  if (this == &other) {
    return *this;
  }
  strFree();
  m_capacity = other.m_capacity;
  m_length = other.m_length;
  m_buffer = other.m_buffer;
  other.m_capacity = other.m_length = 0;
  other.m_buffer = nullptr;
  return *this;
}

void mirel_string::copyFrom(const mirel_string& other) {
  if (other.m_capacity == 0) {
    m_capacity = m_length = 0;
    m_buffer = nullptr;
    return;
  }
  if (strAlloc(other.owns() ? other.m_capacity : other.m_length + kTail, other.m_length)) {
    copyBounded(m_buffer, other.m_buffer, m_capacity);
  }
}

bool mirel_string::strAlloc(unsigned long capacity, unsigned long length) {
  m_capacity = capacity;
  m_length = length;
  m_buffer = allocateText(capacity, 1, 368);
  if (m_buffer != nullptr) {
    return true;
  }
  m_capacity = m_length = 0;
  return false;
}

bool mirel_string::strFree() {
  if (!owns()) {
    m_buffer = nullptr;
  }
  return m_buffer == nullptr || releaseText(m_buffer);
}

void mirel_string::copy_to(char* dest, unsigned long size) const {
  if (size > 0) {
    copyBounded(dest, c_str(), size);
  }
}

mirel_string mirel_string::upper() const {
  mirel_string result(*this);
  for (unsigned long i = 0; i < result.m_length; ++i) {
    result.m_buffer[i] = static_cast<char>(toupper(static_cast<unsigned char>(result.m_buffer[i])));
  }
  return result;
}

mirel_string mirel_string::substr(unsigned long position, unsigned long length) const& {
  if (position >= capacity() || length == 0) {
    return nullptr;
  }
  const unsigned long count = length < m_length ? length : m_length;
  char* temporary = allocateText(count + 1, 0, 173);
  if (temporary == nullptr) {
    return {nullptr, 0, 0};
  }
  copyBounded(temporary, m_buffer + position, count + 1);
  mirel_string result(temporary);
  releaseText(temporary);
  return result;
}

mirel_string mirel_string::substr(unsigned long position, unsigned long length) && {
  if (position >= m_length || length == 0) {
    return nullptr;
  }
  const unsigned long count = std::min(length, m_length - position);
  if (!owns()) {
    return {m_buffer + position, count};
  }
  memmove(m_buffer, m_buffer + position, count);
  memset(m_buffer + count, 0, kTail);
  mirel_string result(m_buffer, count, count + kTail);
  m_buffer = nullptr;
  m_capacity = m_length = 0;
  return result;
}

unsigned long mirel_string::find(const mirel_string& needle, unsigned long from) const {
  if (m_buffer == nullptr || from >= m_length) {
    return npos;
  }
  const char* hit = strcasestr(m_buffer + from, needle.c_str());
  return hit == nullptr ? npos : static_cast<unsigned long>(hit - m_buffer);
}

mirel_string mirel_string::replace_all(const mirel_string& pattern, const mirel_string& replacement) const {
  unsigned long hit = find(pattern, 0);
  if (hit == npos) {
    return *this;
  }
  mirel_string_builder result;
  result.append(m_buffer, hit);
  while (hit != npos && !result.failed()) {
    const unsigned long end = hit + pattern.m_length;
    const unsigned long next = find(pattern, hit + 1);
    const unsigned long upTo = next == npos || next < end ? m_length : next;
    result.append(replacement);
    result.append(m_buffer + end, upTo - end);
    if (next != npos && next < end && result.length() > kLargestMultiplied) {
      result.fail();
    }
    hit = next;
  }
  return result.take();
}

mirel_string mirel_string::ltrim() const {
  unsigned long first = 0;
  while (first < m_length && at(first) == ' ') {
    ++first;
  }
  return substr(first, npos);
}

bool mirel_string::operator==(const mirel_string& other) const {
  return equals(other.c_str());
}

bool mirel_string::equals(const char* other) const {
  return strncmp(c_str(), other == nullptr ? "" : other, m_capacity) == 0;
}

mirel_string& mirel_string::operator+=(const mirel_string& other) {
  const unsigned long capacity = m_length + other.m_length + kTail;
  char* joined = allocateText(capacity, 0, 315);
  if (joined == nullptr) {
    m_capacity = m_length = 0;
    return *this;
  }
  const unsigned long own = strlen(c_str());
  memcpy(joined, c_str(), own);
  copyBounded(joined + own, other.c_str(), capacity - own);
  strFree();
  m_buffer = joined;
  m_capacity = capacity;
  m_length = strlen(joined);
  return *this;
}

mirel_string operator+(const mirel_string& a, const mirel_string& b) {
  const unsigned long capacity = a.m_length + b.m_length + mirel_string::kTail;
  char* temporary = allocateText(capacity, 0, 341);
  if (temporary == nullptr) {
    return {nullptr, 0, 0};
  }
  const unsigned long head = strlen(a.c_str());
  memcpy(temporary, a.c_str(), head);
  copyBounded(temporary + head, b.c_str(), capacity - head);
  mirel_string result(temporary);
  releaseText(temporary);
  return result;
}

std::ostream& operator<<(std::ostream& out, const mirel_string& text) {
  return out << text.c_str();
}
