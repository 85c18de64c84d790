#include "tarn/document/tarn_document_names.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <random>
#include <string>

namespace tarn {

namespace {

struct Key {
  std::uint64_t first, second;
};

std::uint64_t randomWord() {
  std::random_device device;
  return std::uint64_t{device()} << 32 | device();
}

const Key& key() {
  static const Key key = {randomWord(), randomWord()};
  return key;
}

}  // namespace

NameHash::NameHash()
    : m_a(key().first ^ 0x736f6d6570736575),
      m_b(key().second ^ 0x646f72616e646f6d),
      m_c(key().first ^ 0x6c7967656e657261),
      m_d(key().second ^ 0x7465646279746573) {}

void NameHash::round() {
  m_a += m_b;
  m_b = std::rotl(m_b, 13) ^ m_a;
  m_a = std::rotl(m_a, 32);
  m_c += m_d;
  m_d = std::rotl(m_d, 16) ^ m_c;
  m_a += m_d;
  m_d = std::rotl(m_d, 21) ^ m_a;
  m_c += m_b;
  m_b = std::rotl(m_b, 17) ^ m_c;
  m_c = std::rotl(m_c, 32);
}

void NameHash::word(std::uint64_t bytes) {
  m_d ^= bytes;
  round();
  m_a ^= bytes;
}

void NameHash::add(std::string_view part) {
  for (; !part.empty() && m_length % 8 != 0; part.remove_prefix(1)) {
    m_pending |= std::uint64_t{static_cast<unsigned char>(part[0])} << (m_length++ % 8 * 8);
    if (m_length % 8 == 0) {
      word(m_pending);
      m_pending = 0;
    }
  }
  for (; part.size() >= 8; part.remove_prefix(8), m_length += 8) {
    std::uint64_t bytes = 0;
    memcpy(&bytes, part.data(), sizeof bytes);
    word(bytes);
  }
  for (const char byte : part) {
    m_pending |= std::uint64_t{static_cast<unsigned char>(byte)} << (m_length++ % 8 * 8);
  }
}

std::uint64_t NameHash::value() const {
  NameHash end = *this;
  end.word(m_length << 56 | m_pending);
  end.m_c ^= 0xFF;
  end.round();
  end.round();
  end.round();
  return end.m_a ^ end.m_b ^ end.m_c ^ end.m_d;
}

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
