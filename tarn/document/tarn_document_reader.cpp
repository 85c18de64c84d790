#include "tarn/document/tarn_document_reader.h"

namespace tarn {

namespace {

constexpr std::size_t kDeepest = 10'000;
constexpr std::string_view kMark = "\xEF\xBB\xBF";

}  // namespace

Reader::Reader(DocumentSink& sink) : m_sink(sink), m_path(m_ownPath) {}

Reader::Reader(DocumentSink& sink, Path& path) : m_sink(sink), m_path(path) {}

bool Reader::feed(std::string_view block) {
  if (m_over || block.empty()) {
    return !m_over;
  }
  m_begin = block.data();
  m_end = m_begin + block.size();
  const char* at = resume(m_begin);
  while (at != nullptr && (at = pastBlanks(at)) != m_end) {
    at = token(at);
  }
  m_path.keepKeys();
  m_base += block.size();
  return at != nullptr;
}

const char* Reader::resume(const char* at) {
  switch (m_inside) {
    case Inside::nothing:
      return m_next == Next::mark ? pastMark(at) : at;
    case Inside::literal:
      return literal(at);
    case Inside::number:
      return number(at);
    default:
      return held(at);
  }
}

/// A byte order mark may come in pieces: as many bytes of it as were there so far are the offset.
const char* Reader::pastMark(const char* at) {
  while (at != m_end && m_next == Next::mark) {
    const auto seen = static_cast<std::size_t>(offset(at));
    if (seen == kMark.size() || (seen == 0 && *at != kMark[0])) {
      m_next = Next::root;
    } else if (*at++ != kMark[seen]) {
      return damage(std::uint64_t{0}, "is no JSON");
    }
  }
  return at;
}

const char* Reader::pastBlanks(const char* at) {
  while (at != m_end && static_cast<unsigned char>(*at) <= ' ') {
    if (*at == ' ') {
      at = endOfSpaces(at, m_end);
    } else if (*at == '\n') {
      newLine(at++);
    } else if (*at == '\r' || *at == '\t') {
      ++at;
    } else {
      break;
    }
  }
  return at;
}

const char* Reader::token(const char* at) {
  switch (m_next) {
    case Next::element:
      return *at == ']' ? close(at, Kind::array) : value(at);
    case Next::mark:
    case Next::root:
    case Next::value:
      return value(at);
    case Next::key:
      return *at == '}' ? close(at, Kind::object) : member(at);
    case Next::member:
      return member(at);
    case Next::colon:
      return colon(at);
    case Next::separator:
      return separator(at);
    default:
      return damage(at, "goes on behind its end");
  }
}

const char* Reader::value(const char* at) {
  switch (*at) {
    case '"':
      return string(at, Inside::text);
    case '{':
      return open(at, Kind::object);
    case '[':
      return open(at, Kind::array);
    case 't':
      m_rest = "true";
      return scalar(at, Inside::literal);
    case 'f':
      m_rest = "false";
      return scalar(at, Inside::literal);
    case 'n':
      m_rest = "null";
      return scalar(at, Inside::literal);
    default:
      return *at == '-' || (*at >= '0' && *at <= '9') ? scalar(at, Inside::number)
                                                      : damage(at, "has no value where one should be");
  }
}

/// What stands behind the name as mirel writes it is read at once.
const char* Reader::member(const char* at) {
  if (*at != '"') {
    return damage(at, "has no name where one should be");
  }
  at = string(at, Inside::key);
  return at == nullptr || m_end - at < 3 || at[0] != ':' || at[1] != ' ' || at[2] != '"'
             ? at
             : string(at + 2, Inside::text);
}

const char* Reader::open(const char* at, Kind kind) {
  if (m_path.depth() == kDeepest) {
    return damage(at, "is nested deeper than 10,000");
  }
  m_path.valueBegins();
  const bool goOn = m_sink.open(kind, place(at));
  m_path.push(kind);
  m_next = kind == Kind::object ? Next::key : Next::element;
  m_ending.wholeUntil = offset(at) + 1;
  return goOn ? at + 1 : stop(at);
}

const char* Reader::close(const char* at, Kind kind) {
  m_path.pop();
  const bool goOn = m_sink.close(kind, place(at));
  valueEnds(at + 1);
  return goOn ? at + 1 : stop(at);
}

const char* Reader::separator(const char* at) {
  const Kind kind = m_path.m_top->kind;
  if (*at == ',') {
    m_next = kind == Kind::object ? Next::member : Next::value;
    return at + 1;
  }
  if (*at == (kind == Kind::object ? '}' : ']')) {
    return close(at, kind);
  }
  return damage(at, kind == Kind::object ? "has neither comma nor brace behind a member"
                                         : "has neither comma nor bracket behind an element");
}

const char* Reader::colon(const char* at) {
  if (*at != ':') {
    return damage(at, "has no colon behind a name");
  }
  m_next = Next::value;
  return at + 1;
}

void Reader::valueEnds(const char* behind) {
  m_path.valueEnds();
  m_ending.wholeUntil = offset(behind);
  m_next = m_path.depth() == 0 ? Next::nothing : Next::separator;
}

const char* Reader::stop(const char* at) {
  end(State::stopped, offset(at), "");
  return nullptr;
}

const char* Reader::damage(std::uint64_t offset, const char* problem) {
  end(State::damaged, offset, problem);
  return nullptr;
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
  m_begin = m_end = nullptr;
  if (!m_over && m_inside == Inside::number && m_path.depth() == 0 && isNumber(m_digits)) {
    tellScalar(m_begin, m_begin, true);
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
