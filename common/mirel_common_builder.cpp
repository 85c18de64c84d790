#include "common/mirel_common_builder.h"

#include <algorithm>
#include <utility>

#include "common/mirel_common_memory.h"

namespace {

constexpr unsigned long kSmallest = 61;

}  // namespace

mirel_string_builder::~mirel_string_builder() {
  if (m_block != nullptr) {
    releaseText(m_block);
  }
}

void mirel_string_builder::append(unsigned long count, char character) {
  if (count == 0 || !reserve(count)) {
    return;
  }
  memset(m_block + m_length, character, count);
  m_length += count;
}

void mirel_string_builder::endMeasuring() {
  m_measuring = false;
  resize(std::exchange(m_measured, 0));
}

void mirel_string_builder::expect(unsigned long more) {
  if (m_failed || more <= m_room - m_length) {
    return;
  }
  const unsigned long room = m_length + more;
  if (char* const block = tryAllocateText(room + mirel_string::kTail, 0, 315)) {
    moveTo(block, room);
  }
}

bool mirel_string_builder::grow(unsigned long more) {
  if (m_measuring) {
    m_measured += more;
    return false;
  }
  if (m_failed || more > mirel_string::npos / 4) {
    fail();
    return false;
  }
  return resize(std::max({kSmallest, m_length + more, m_room * 2}));
}

bool mirel_string_builder::resize(unsigned long room) {
  char* block = allocateText(room + mirel_string::kTail, 0, 315);
  if (block == nullptr) {
    fail();
    return false;
  }
  moveTo(block, room);
  return true;
}

void mirel_string_builder::moveTo(char* block, unsigned long room) {
  if (m_block != nullptr) {
    memcpy(block, m_block, m_length);
    releaseText(m_block);
  }
  m_block = block;
  m_room = room;
}

void mirel_string_builder::fail() {
  if (m_block != nullptr) {
    releaseText(m_block);
  }
  m_length = m_room = 0;
  m_failed = true;
  ++memoryLosses;
}

mirel_string mirel_string_builder::take() {
  if (m_failed) {
    return {nullptr, 0, 0};
  }
  if (m_block == nullptr) {
    return nullptr;
  }
  memset(m_block + m_length, 0, mirel_string::kTail);
  mirel_string result(m_block, m_length, m_length + mirel_string::kTail);
  m_block = nullptr;
  m_length = m_room = 0;
  return result;
}
