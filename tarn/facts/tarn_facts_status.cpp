#include "tarn/facts/tarn_facts_status.h"

#include "tarn/document/tarn_document_escape.h"

namespace tarn {

namespace {

constexpr std::size_t kTextKept = 1024;  ///< more than a name, a version or a time has

std::optional<Silence> silenceOf(std::string_view text) {
  if (text.empty()) {
    return Silence::empty;
  }
  return text == "null" ? std::optional(Silence::null) : std::nullopt;
}

}  // namespace

void Roles::offer(const Fact& fact, std::string_view text) {
  Player& player = m_players[static_cast<std::size_t>(fact.role)];
  const std::string_view trimmed = text.substr(0, text.find_last_not_of(" \r\n\t") + 1);
  // Facts lie in the order of the table.
  if (!trimmed.empty() && trimmed != "NULL" && (player.fact == nullptr || &fact < player.fact)) {
    player = {&fact, std::string(trimmed)};
  }
}

std::string reasonOf(const Fact* fact, Silence silence) {
  constexpr std::string Fact::*kReasons[] = {&Fact::ifNull, &Fact::ifEmpty, &Fact::ifNone};
  return fact == nullptr || silence == Silence::object ? ""
                                                       : fact->*kReasons[static_cast<std::size_t>(silence)];
}

bool StatusSink::open(Kind kind, const Place&) {
  const bool isMember = inObject();
  begin(Value::container);
  const Facts::Step step = stepHere();
  const bool isContainer = step.fact() != nullptr && step.fact()->isContainer;
  m_levels.push_back({.kind = kind,
                      .step = step,
                      .isMember = isMember,
                      .isLookedInto = kind == Kind::object || !isMember || isContainer,
                      .silentFrom = m_silent.end()});
  return true;
}

bool StatusSink::close(Kind, const Place&) {
  leave(true);
  return true;
}

void StatusSink::finish() {
  while (!m_levels.empty()) {
    leave(false);
  }
}

/// Ends the innermost container. One that the document's end left open is not known to be empty.
void StatusSink::leave(bool isClosed) {
  const Level level = m_levels.back();
  m_levels.pop_back();
  if (level.isMember && level.isEmpty) {
    if (isClosed) {
      ask(level.kind == Kind::array ? Silence::array : Silence::object);
    }
    return;
  }
  if (!level.isLookedInto) {
    m_silent.backTo(level.silentFrom);
    ask(std::nullopt);
    return;
  }
  counts().asked += level.counts.asked;
  counts().answered += level.counts.answered;
  if (level.kind == Kind::object && level.hasMore && !m_levels.empty() &&
      m_levels.back().kind == Kind::array) {
    m_levels.back().isLookedInto = true;
  }
}

bool StatusSink::key(const Piece& piece, const Place& place) {
  if (piece.ends && m_path.number() > 1) {
    m_repeated.add(Silence::null, m_path.pointer());
  }
  return m_strict.key(piece, place);
}

bool StatusSink::text(const Piece& piece, const Place& place) {
  if (piece.begins) {
    m_text.clear();
  }
  if (m_text.size() < kTextKept) {
    appendUnescaped(piece.raw.substr(0, kTextKept), m_text);
  }
  if (piece.ends) {
    begin(Value::text);
    if (inObject()) {
      ask(silenceOf(m_text));
      play();
    }
  }
  return m_strict.text(piece, place);
}

bool StatusSink::scalar(const Piece& piece, const Place&) {
  if (piece.ends) {
    begin(Value::scalar);
  }
  return true;
}

void StatusSink::begin(Value value) {
  if (m_levels.empty()) {
    return;
  }
  Level& level = m_levels.back();
  level.isEmpty = false;
  level.hasMore = level.hasMore || value != Value::text;
  m_isDocument = m_isDocument || (m_levels.size() == 1 && inObject() && value != Value::scalar);
}

void StatusSink::ask(std::optional<Silence> silence) {
  ++counts().asked;
  if (silence) {
    m_silent.add(*silence, m_path.pointer());
  } else {
    ++counts().answered;
  }
}

void StatusSink::play() {
  const Fact* const fact = stepHere().fact();
  if (fact != nullptr && fact->role != Role::none && !silenceOf(m_text)) {
    m_roles.offer(*fact, m_text);
  }
}

/// The facts' step to the value at hand.
Facts::Step StatusSink::stepHere() const {
  if (m_levels.empty()) {
    return Facts::Step(m_facts);
  }
  const Level& level = m_levels.back();
  if (!level.step.known() || level.kind == Kind::array) {
    return level.step.below("*");
  }
  const std::uint32_t number = m_path.number();
  return level.step.below(number == 1 ? m_path.name() : m_path.name() + "#" + std::to_string(number));
}

}  // namespace tarn
