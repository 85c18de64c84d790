/// The part of the reader that knows what strings, numbers and words look like.

#include <algorithm>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kLongestUnit = 12;  // a pair of surrogates

}  // namespace

bool Reader::string(Inside inside) {
  if (inside == Inside::text) {
    m_path.valueBegins();
  }
  m_inside = inside;
  m_begins = true;
  m_token = place(offset(m_at++));
  return contents();
}

/// Reads a string from anywhere between two of its characters.
bool Reader::contents() {
  Piece piece;
  piece.offset = offset(m_at);
  const char* at = m_at;
  unsigned char seen = 0;
  bool controls = false;
  const auto until = [&](const char* end) {
    piece.raw = {m_at, static_cast<std::size_t>(end - m_at)};
    piece.begins = m_begins;
    piece.ascii = !controls && seen < 0x80;
    m_at = end;
    return piece.raw.empty() && !piece.ends ? true : tellString(piece);
  };
  piece.ends = false;
  for (;; ++at) {
    at = endOfText(at, m_end, &seen);
    const std::string_view rest(at, static_cast<std::size_t>(m_end - at));
    if (rest.empty() || rest[0] == '"') {
      break;
    }
    if (rest[0] == '\\') {
      const Escape escape = escapeAt(rest);
      if (escape.kind == Escape::Kind::unfinished) {
        m_held = rest;
        break;
      }
      if (escape.kind == Escape::Kind::unknown) {
        return until(at) && damageHere("has an escape that JSON does not know");
      }
      piece.plain = false;
      at += escape.length - 1;
    } else if (rest[0] == '\0') {
      return until(at) && damageHere("has a NUL byte in a string");
    } else {
      controls = true;
      if (rest[0] == '\n') {
        ++m_line;
        m_lineStart = offset(at) + 1;
      }
    }
  }
  if (at != m_end && *at == '"') {
    piece.ends = true;
    return until(at) && stringEnds();
  }
  if (at == m_end) {
    at -= unfinishedUtf8({m_at, static_cast<std::size_t>(at - m_at)});
    m_held.assign(at, m_end);
  }
  const bool goOn = until(at);
  m_at = m_end;
  return goOn;
}

/// Goes on with a string whose last block ended within an escape or a character.
bool Reader::resumeHeld() {
  const std::size_t had = m_held.size();
  m_held.append(m_at, std::min<std::size_t>(kLongestUnit, static_cast<std::size_t>(m_end - m_at)));
  std::size_t done = 0;
  bool known = true;
  bool plain = true;
  while (done < had && known) {
    const std::string_view rest = std::string_view(m_held).substr(done);
    const bool isEscape = rest[0] == '\\';
    const Escape escape = isEscape ? escapeAt(rest) : Escape{};
    if (isEscape ? escape.kind == Escape::Kind::unfinished : unfinishedUtf8(rest) == rest.size()) {
      break;
    }
    known = escape.kind == Escape::Kind::known;
    plain = plain && !isEscape;
    done += !known ? 0 : isEscape ? escape.length : nextUtf8(rest).length;
  }
  const Piece piece = {
      std::string_view(m_held).substr(0, done), m_base - had, m_begins, false, plain, !plain};
  const bool goOn = done == 0 || tellString(piece);
  if (!known) {
    return goOn && damage(m_base - had + done, "has an escape that JSON does not know");
  }
  const bool isOver = done >= had;
  m_at = isOver ? m_at + (done - had) : m_end;
  m_held.erase(0, isOver ? m_held.size() : done);
  return goOn && (!isOver || contents());
}

bool Reader::tellString(const Piece& piece) {
  m_begins = false;
  if (m_inside == Inside::text) {
    return sinkSays(m_sink.text(piece, m_token));
  }
  const bool clean = piece.plain && piece.ascii;
  if (piece.begins && piece.ends) {
    m_path.keyWhole(piece.raw, clean);
  } else {
    m_path.keyPart(piece.raw, clean, piece.begins);
    if (piece.ends) {
      m_path.keyEnds();
    }
  }
  return sinkSays(m_sink.key(piece, m_token));
}

bool Reader::stringEnds() {
  ++m_at;
  if (m_inside == Inside::text) {
    valueEnds(offset(m_at));
  } else {
    m_next = Next::colon;
  }
  m_inside = Inside::nothing;
  return true;
}

bool Reader::scalar(Inside inside) {
  m_path.valueBegins();
  m_inside = inside;
  m_begins = true;
  m_digits = Digits::start;
  m_token = place(offset(m_at));
  return inside == Inside::literal ? literal() : number();
}

bool Reader::literal() {
  const char* at = m_at;
  for (; at != m_end && *m_rest != '\0'; ++at, ++m_rest) {
    if (*at != *m_rest) {
      return tellScalar(at, false) && damageHere("has a word that JSON does not know");
    }
  }
  return tellScalar(at, *m_rest == '\0');
}

bool Reader::isNumber(Digits digits) {
  return digits == Digits::zero || digits == Digits::whole || digits == Digits::fraction ||
         digits == Digits::power;
}

/// What the number has come to with one more byte, `done` when it is none of its own.
Reader::Digits Reader::withByte(Digits digits, char byte) {
  const bool isDigit = byte >= '0' && byte <= '9';
  const bool isExponent = (byte | 0x20) == 'e';
  switch (digits) {
    case Digits::start:
      if (byte == '-') {
        return Digits::sign;
      }
      [[fallthrough]];
    case Digits::sign:
      return byte == '0' ? Digits::zero : isDigit ? Digits::whole : Digits::done;
    case Digits::whole:
      if (isDigit) {
        return Digits::whole;
      }
      [[fallthrough]];
    case Digits::zero:
      return byte == '.' ? Digits::point : isExponent ? Digits::exponent : Digits::done;
    case Digits::point:
      return isDigit ? Digits::fraction : Digits::done;
    case Digits::fraction:
      return isDigit ? Digits::fraction : isExponent ? Digits::exponent : Digits::done;
    case Digits::exponent:
      if (byte == '+' || byte == '-') {
        return Digits::powerSign;
      }
      [[fallthrough]];
    default:
      return isDigit ? Digits::power : Digits::done;
  }
}

bool Reader::number() {
  const char* at = m_at;
  for (; at != m_end; ++at) {
    const Digits with = withByte(m_digits, *at);
    if (with == Digits::done) {
      return isNumber(m_digits) ? tellScalar(at, true)
                                : tellScalar(at, false) && damageHere("has a number that lacks a digit");
    }
    m_digits = with;
  }
  return tellScalar(at, false);
}

bool Reader::tellScalar(const char* end, bool ends) {
  const Piece piece = {{m_at, static_cast<std::size_t>(end - m_at)}, offset(m_at), m_begins, ends};
  m_at = end;
  if (piece.raw.empty() && !ends) {
    return true;
  }
  m_begins = false;
  const bool goOn = m_sink.scalar(piece, m_token);
  if (ends) {
    valueEnds(offset(m_at));
    m_inside = Inside::nothing;
  }
  return sinkSays(goOn);
}

}  // namespace tarn
