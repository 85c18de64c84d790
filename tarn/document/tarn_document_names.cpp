#include "tarn/document/tarn_document_names.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "tarn/document/tarn_document_escape.h"
#include "tarn/document/tarn_document_utf8.h"

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

/// Stands for the name that a number makes of one.
std::uint64_t numbered(std::uint64_t base, std::uint32_t number) {
  char bytes[sizeof number];
  memcpy(bytes, &number, sizeof number);
  KeyedHash hash(base);
  hash.add({bytes, sizeof bytes});
  return hash.value();
}

}  // namespace

KeyedHash::KeyedHash(std::uint64_t seed) : SipHash(key()) {
  char bytes[sizeof seed];
  memcpy(bytes, &seed, sizeof seed);
  add({bytes, sizeof bytes});
}

void NameHash::addRaw(std::string_view raw, bool clean) {
  if (clean) {
    add(raw);
    return;
  }
  std::string text;
  appendUnescaped(raw, text);
  std::string mended;
  appendMended(text, mended);
  add(mended);
}

/// Numbers at the end are rare.
void NameHash::add(std::string_view text) {
  if (!m_inNumber && text.find('#') == std::string_view::npos) {
    m_text.add(text);
    return;
  }
  for (const char byte : text) {
    follow(byte);
    m_text.add({&byte, 1});
  }
}

void NameHash::follow(char byte) {
  if (byte == '#') {
    if (isNumbered()) {
      m_base = numbered(m_base, m_number);
    } else {
      m_root = m_text.wide();
      m_base = m_root[0];
    }
    m_inNumber = true;
    m_number = 0;
    return;
  }
  const auto digit = static_cast<unsigned char>(byte - '0');
  constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();
  m_inNumber = m_inNumber && digit < 10 && m_number + digit != 0 && m_number <= (kMost - digit) / 10;
  m_number = m_inNumber ? m_number * 10 + digit : 0;
}

NameId NameHash::value() const {
  return isNumbered() ? NameId{numbered(m_base, m_number), m_base, m_number} : NameId{m_text.value()};
}

void Names::open() {
  m_objects.push_back(m_entries.size());
}

/// Entries go in the reverse order of their coming, so nothing in the table ever lies behind a gap.
void Names::close() {
  for (; m_entries.size() > m_objects.back(); m_entries.pop_back()) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = m_entries.back().id & mask;
    while (m_slots[slot] != m_entries.size()) {
      slot = (slot + 1) & mask;
    }
    m_slots[slot] = 0;
  }
  m_objects.pop_back();
}

/// Null when the innermost object has no such name.
Names::Entry* Names::find(std::uint64_t id) {
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t slot = id & mask; !m_slots.empty() && m_slots[slot] != 0; slot = (slot + 1) & mask) {
    const std::uint32_t index = m_slots[slot] - 1;
    if (m_entries[index].id == id && index >= m_objects.back()) {
      return &m_entries[index];
    }
  }
  return nullptr;
}

void Names::place(std::uint32_t entry) {
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = m_entries[entry].id & mask;
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

void Names::insert(std::uint64_t id) {
  if ((m_entries.size() + 1) * 4 > m_slots.size() * 3) {
    grow();
  }
  m_entries.push_back({id, 1});
  place(static_cast<std::uint32_t>(m_entries.size() - 1));
}

/// Whether a member got this name by its number.
bool Names::wasGiven(const NameId& name) {
  const Entry* const base = name.number == 0 ? nullptr : find(name.base);
  return base != nullptr && base->last >= name.number;
}

std::uint32_t Names::numberOf(const NameId& name) {
  Entry* same = find(name.id);
  if (same == nullptr) {
    insert(name.id);
    if (!wasGiven(name)) {
      return 1;
    }
    same = &m_entries.back();
  }
  do {
    ++same->last;
  } while (find(numbered(name.id, same->last)) != nullptr);
  return same->last;
}

}  // namespace tarn
