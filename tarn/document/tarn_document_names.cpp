#include "tarn/document/tarn_document_names.h"

#include <algorithm>
#include <random>
#include <string>

namespace tarn {

namespace {

std::uint64_t randomWord() {
  std::random_device device;
  return std::uint64_t{device()} << 32 | device();
}

const SipKey& key() {
  static const SipKey key = {randomWord(), randomWord()};
  return key;
}

}  // namespace

NameHash::NameHash() : SipHash(key()) {}

void Names::open() {
  m_objects.push_back(m_entries.size());
}

/// Entries go in the reverse order of their coming, so nothing in the table ever lies behind a gap.
void Names::close() {
  for (; m_entries.size() > m_objects.back(); m_entries.pop_back()) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = m_entries.back().hash & mask;
    while (m_slots[slot] != m_entries.size()) {
      slot = (slot + 1) & mask;
    }
    m_slots[slot] = 0;
  }
  m_objects.pop_back();
}

/// Null when the innermost object has no such name.
Names::Entry* Names::find(std::uint64_t hash) {
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t slot = hash & mask; !m_slots.empty() && m_slots[slot] != 0; slot = (slot + 1) & mask) {
    const std::uint32_t index = m_slots[slot] - 1;
    if (m_entries[index].hash == hash && index >= m_objects.back()) {
      return &m_entries[index];
    }
  }
  return nullptr;
}

void Names::place(std::uint32_t entry) {
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = m_entries[entry].hash & mask;
  while (m_slots[slot] != 0) {
    slot = (slot + 1) & mask;
  }
  m_slots[slot] = entry + 1;
}

void Names::grow() {
  const std::size_t size = std::max<std::size_t>(64, m_slots.size() * 2);
  m_slots = {};
  m_slots.resize(size);
  for (std::uint32_t entry = 0; entry < m_entries.size(); ++entry) {
    place(entry);
  }
}

void Names::insert(std::uint64_t hash) {
  if ((m_entries.size() + 1) * 4 > m_slots.size() * 3) {
    grow();
  }
  m_entries.push_back({hash, 1});
  place(static_cast<std::uint32_t>(m_entries.size() - 1));
}

std::uint32_t Names::numberOf(const NameHash& name) {
  const std::uint64_t hash = name.value();
  Entry* const same = find(hash);
  if (same == nullptr) {
    insert(hash);
    return 1;
  }
  for (;;) {
    const std::uint32_t number = ++same->last;
    NameHash numbered = name;
    numbered.add("#" + std::to_string(number));
    if (find(numbered.value()) == nullptr) {
      insert(numbered.value());  // `same` is not used any more: entries may have moved
      return number;
    }
  }
}

}  // namespace tarn
