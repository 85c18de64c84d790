#include "tarn/document/tarn_document_reader.h"

namespace tarn {

namespace {

constexpr std::size_t kDeepest = 10'000;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

}  // namespace

Reader::Reader(DocumentSink& sink) : m_sink(sink), m_path(m_ownPath) {}

Reader::Reader(DocumentSink& sink, Path& path) : m_sink(sink), m_path(path) {}

bool Reader::feed(std::string_view block) {
  m_begin = m_at = block.data();
  m_end = m_begin + block.size();
  bool goOn = !m_over && resume();
  while (goOn && skipBlanks()) {
    goOn = token();
  }
  m_path.keepKeys();
  m_base += block.size();
  return goOn;
}

bool Reader::resume() {
  switch (m_inside) {
    case Inside::nothing:
      return m_next != Next::mark || skipMark();
    case Inside::literal:
      return literal();
    case Inside::number:
      return number();
    default:
      return resumeHeld();
  }
}

/// A byte order mark may come in pieces: as many bytes of it as were there so far are the offset.
bool Reader::skipMark() {
  while (m_at != m_end && m_next == Next::mark) {
    const auto seen = static_cast<std::size_t>(offset(m_at));
    if (seen == kMark.size() || (seen == 0 && *m_at != kMark[0])) {
      m_next = Next::root;
    } else if (*m_at++ != kMark[seen]) {
      return damage(0, "is no JSON");
    }
  }
  return true;
}

/// False when the block has no more.
bool Reader::skipBlanks() {
  const char* at = m_at;
  for (; at != m_end; ++at) {
    if (*at == '\n') {
      ++m_line;
      m_lineStart = offset(at) + 1;
    } else if (*at != ' ' && *at != '\r' && *at != '\t') {
      break;
    }
  }
  m_at = at;
  return at != m_end;
}

bool Reader::token() {
  switch (m_next) {
    case Next::element:
      return *m_at == ']' ? closing(Kind::array) : value();
    case Next::mark:
    case Next::root:
    case Next::value:
      return value();
    case Next::key:
      if (*m_at == '}') {
        return closing(Kind::object);
      }
      [[fallthrough]];
    case Next::member:
      return *m_at == '"' ? string(Inside::key) : damageHere("has no name where one should be");
    case Next::colon:
      return colon();
    case Next::separator:
      return separator();
    default:
      return damageHere("goes on behind its end");
  }
}

bool Reader::value() {
  switch (*m_at) {
    case '"':
      return string(Inside::text);
    case '{':
      return open(Kind::object);
    case '[':
      return open(Kind::array);
    case 't':
      m_rest = "true";
      return scalar(Inside::literal);
    case 'f':
      m_rest = "false";
      return scalar(Inside::literal);
    case 'n':
      m_rest = "null";
      return scalar(Inside::literal);
    default:
      return *m_at == '-' || (*m_at >= '0' && *m_at <= '9') ? scalar(Inside::number)
                                                            : damageHere("has no value where one should be");
  }
}

bool Reader::open(Kind kind) {
  if (m_path.m_depth == kDeepest) {
    return damageHere("is nested deeper than 10,000");
  }
  m_path.valueBegins();
  const Place here = place(offset(m_at++));
  const bool goOn = m_sink.open(kind, here);
  m_path.push(kind);
  m_next = kind == Kind::object ? Next::key : Next::element;
  m_ending.wholeUntil = here.offset + 1;
  return sinkSays(goOn);
}

bool Reader::closing(Kind kind) {
  m_path.pop();
  const Place here = place(offset(m_at++));
  const bool goOn = m_sink.close(kind, here);
  valueEnds(here.offset + 1);
  return sinkSays(goOn);
}

bool Reader::separator() {
  const Kind kind = m_path.m_top->kind;
  if (*m_at == ',') {
    ++m_at;
    m_next = kind == Kind::object ? Next::member : Next::value;
    return true;
  }
  if (*m_at == (kind == Kind::object ? '}' : ']')) {
    return closing(kind);
  }
  return damageHere(kind == Kind::object ? "has neither comma nor brace behind a member"
                                         : "has neither comma nor bracket behind an element");
}

bool Reader::colon() {
  if (*m_at != ':') {
    return damageHere("has no colon behind a name");
  }
  ++m_at;
  m_next = Next::value;
  return true;
}

void Reader::valueEnds(std::uint64_t offset) {
  m_path.valueEnds();
  m_ending.wholeUntil = offset;
  m_next = m_path.m_depth == 0 ? Next::nothing : Next::separator;
}

bool Reader::sinkSays(bool goOn) {
  if (!goOn) {
    end(State::stopped, offset(m_at), "");
  }
  return goOn;
}

bool Reader::damageHere(const char* problem) {
  return damage(offset(m_at), problem);
}

bool Reader::damage(std::uint64_t offset, const char* problem) {
  end(State::damaged, offset, problem);
  return false;
}

void Reader::end(State state, std::uint64_t offset, const char* problem) {
  m_over = true;
  m_ending.state = state;
  m_ending.place = place(offset);
  m_ending.problem = problem;
  m_ending.innermost = m_path.pointer();
  for (std::size_t depth = m_path.m_depth; depth > 0; --depth) {
    m_ending.closers += m_path.m_levels[depth - 1].kind == Kind::object ? '}' : ']';
  }
}

Ending Reader::finish() {
  m_begin = m_at = m_end = nullptr;
  if (!m_over && m_inside == Inside::number && m_path.m_depth == 0 && isNumber(m_digits)) {
    tellScalar(m_at, true);
  }
  if (!m_over) {
    const bool whole = m_next == Next::nothing && m_inside == Inside::nothing;
    end(whole ? State::whole : State::cut, m_base, whole ? "" : whatIsOpen());
  }
  return m_ending;
}

const char* Reader::whatIsOpen() const {
  switch (m_inside) {
    case Inside::key:
      return "ends inside a name";
    case Inside::text:
      return "ends inside a text";
    case Inside::literal:
    case Inside::number:
      return "ends inside a value";
    default:
      return m_path.m_depth == 0                  ? "is empty"
             : m_path.m_top->kind == Kind::object ? "ends inside an object"
                                                  : "ends inside an array";
  }
}

}  // namespace tarn
