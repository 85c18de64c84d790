#include "tarn/document/tarn_document_survey.h"

namespace tarn {

void Repeats::sort() {
  m_repeats.sort();
  m_next = m_repeats.next();
}

std::uint32_t Repeats::next() {
  if (m_next == nullptr || m_next->ordinal != m_ordinal++) {
    return 1;
  }
  const std::uint32_t number = m_next->number;
  m_next = m_repeats.next();
  return number;
}

bool RepeatSurvey::open(Kind kind, const Place&) {
  if (kind == Kind::object) {
    m_open.push_back(++m_objects);
  }
  return true;
}

bool RepeatSurvey::close(Kind kind, const Place&) {
  if (kind == Kind::object) {
    m_open.pop_back();
  }
  return true;
}

bool RepeatSurvey::key(const Piece& piece, const Place&) {
  if (piece.begins) {
    m_hash = NameHash(m_open.back());
  }
  m_hash.addRaw(piece.raw, piece.plain && piece.ascii);
  if (piece.ends) {
    m_members.add({m_hash.root(), m_count++, m_hash.value()});
  }
  return true;
}

Repeats RepeatSurvey::finish() {
  Repeats repeats;
  Names names;
  names.open();
  std::array<std::uint64_t, 2> root = {};
  m_members.sort();
  while (const Member* const member = m_members.next()) {
    if (member->root != root) {
      root = member->root;
      names.close();
      names.open();
    }
    const std::uint32_t number = names.numberOf(member->name);
    if (number > 1) {
      repeats.add(member->ordinal, number);
    }
  }
  if (m_members.lost()) {
    repeats.lose();
  }
  repeats.sort();
  return repeats;
}

}  // namespace tarn
