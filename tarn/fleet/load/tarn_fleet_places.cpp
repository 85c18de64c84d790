#include "tarn/fleet/load/tarn_fleet_places.h"

#include <fmt/format.h>

#include <algorithm>

#include "tarn/compare/tarn_compare_digest.h"
#include "tarn/document/tarn_document_path.h"
#include "tarn/document/tarn_document_siphash.h"
#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kLongestToken = 256, kLongestText = 1024;  // bytes
constexpr std::size_t kSlotsAtFirst = 1 << 12;

bool isPlainText(std::string_view text) {
  unsigned char all = 0;
  bool hasNul = false;
  for (const char byte : text) {
    all = static_cast<unsigned char>(all | static_cast<unsigned char>(byte));
    hasNul |= byte == '\0';
  }
  return all < 0x80 && !hasNul;
}

/// The beginning, and a hash of the whole.
std::string shortened(std::string_view text, std::size_t longest) {
  if (text.size() <= longest) {
    return std::string(text);
  }
  std::size_t end = longest - 32;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  return fmt::format("{}…{:016x}", text.substr(0, end), sipHash(text));
}

std::uint64_t hashOf(const std::string& text) {
  return text.empty() ? 0 : sipHash(text);
}

/// The token begins with what tells its way: a member "/", an element of a number "#", a row "[".
std::string_view nameOf(std::string_view token) {
  return token.substr(1);
}

std::string textBelow(const FleetPlace& above, std::string_view token) {
  std::string text = above.text;
  if (token[0] == '[') {
    text.append(token).append("]");
  } else {
    text += '/';
    text += nameOf(token);
  }
  return shortened(text, kLongestText);
}

std::string pointerBelow(const FleetPlace& above, std::string_view token) {
  const bool isElement = token[0] != '/';
  return shortened(above.pointer + "/" + (isElement ? "*" : std::string(nameOf(token))), kLongestText);
}

}  // namespace

void appendRowWord(std::string_view word, std::string& name) {
  constexpr std::string_view kSpecial = "~/]=,";
  for (const char byte : word) {
    const std::size_t special = kSpecial.find(byte);
    if (special == std::string_view::npos) {
      name += byte;
    } else {
      name += {'~', static_cast<char>('0' + special)};
    }
  }
}

void appendClean(std::string_view text, std::string& out) {
  if (isPlainText(text)) {
    out += text;
    return;
  }
  for (std::size_t end = 0; !text.empty(); text.remove_prefix(std::min(end + 1, text.size()))) {
    end = std::min(text.find('\0'), text.size());
    appendMended(text.substr(0, end), out);
    out += end < text.size() ? kReplacement : "";
  }
}

FleetPlaces::FleetPlaces(const Facts& facts) : m_slots(kSlotsAtFirst) {
  m_places.push_back({.place = {}, .step = Facts::Step(facts), .token = {}});
  m_digests.push_back(0);
}

KnownPlace& FleetPlaces::member(const KnownPlace& above, std::string_view name, std::uint32_t number) {
  std::string token = "/";
  if (name.size() <= kLongestToken && isPlainText(name)) {
    appendToken(name, token);
  } else {
    std::string clean;
    appendClean(name, clean);
    appendToken(shortened(clean, kLongestToken), token);
  }
  return find(above, number > 1 ? fmt::format("{}#{}", token, number) : token, Way::member);
}

KnownPlace& FleetPlaces::element(const KnownPlace& above, std::uint32_t number) {
  return find(above, fmt::format("#{}", number), Way::element);
}

KnownPlace& FleetPlaces::row(const KnownPlace& above, std::string_view name, bool isScope) {
  std::string token = "[";
  appendClean(name, token);
  return find(above, shortened(token, kLongestToken), isScope ? Way::scope : Way::element);
}

KnownPlace& FleetPlaces::find(const KnownPlace& above, std::string_view token, Way way) {
  const std::uint64_t digest = digestOf(digestOf(token), reinterpret_cast<std::uintptr_t>(&above));
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = digest & mask;
  for (; m_slots[slot] != 0; slot = (slot + 1) & mask) {
    const std::uint32_t index = m_slots[slot] - 1;
    if (m_digests[index] == digest && m_places[index].above == &above && m_places[index].token == token) {
      return m_places[index];
    }
  }
  m_slots[slot] = static_cast<std::uint32_t>(m_places.size() + 1);
  m_digests.push_back(digest);
  KnownPlace& added = add(above, token, way);
  if (2 * m_places.size() > m_slots.size()) {
    grow();
  }
  return added;
}

KnownPlace& FleetPlaces::add(const KnownPlace& above, std::string_view token, Way way) {
  m_places.push_back(
      {.place = {textBelow(above.place, token), pointerBelow(above.place, token), above.place.scope},
       .step = above.step.below(way == Way::member ? nameOf(token) : "*"),
       .above = &above,
       .token = std::string(token)});
  KnownPlace& added = m_places.back();
  if (way == Way::scope && added.place.scope.empty()) {
    added.place.scope = added.place.text;
  }
  added.hash = sipHash(added.place.text);
  added.scope = hashOf(added.place.scope);
  const Fact* const fact = added.step.fact();
  added.isVolatile = above.isVolatile || (fact != nullptr && fact->isVolatile);
  m_bytes += sizeof added + added.place.text.capacity() + added.place.pointer.capacity() +
             added.place.scope.capacity() + token.size() + 16;
  return added;
}

void FleetPlaces::grow() {
  m_slots.assign(2 * m_slots.size(), 0);
  const std::size_t mask = m_slots.size() - 1;
  for (std::uint32_t index = 1; index < m_places.size(); ++index) {
    std::size_t slot = m_digests[index] & mask;
    while (m_slots[slot] != 0) {
      slot = (slot + 1) & mask;
    }
    m_slots[slot] = index + 1;
  }
}

}  // namespace tarn
