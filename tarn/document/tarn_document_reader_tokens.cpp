/// The part of the reader that knows what strings, numbers and words look like.

#include <algorithm>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kLongestUnit = 12;  // a pair of surrogates
constexpr char kUnknownEscape[] = "has an escape that JSON does not know";

/// A character of UTF-8, or what is none, in the terms of an escape.
Escape characterAt(std::string_view text) {
  const bool isUnfinished = unfinishedUtf8(text) == text.size();
  return {isUnfinished ? Escape::Kind::unfinished : Escape::Kind::known, nextUtf8(text).length, 0};
}

}  // namespace

/// Most strings are plain and in one block.
const char* Reader::string(const char* at, Inside inside) {
  if (inside == Inside::text) {
    m_path.valueBegins();
  }
  const Place here = place(at);
  const char* const begin = at + 1;
  unsigned char seen = 0;
  const char* const end = endOfText(begin, m_end, &seen);
  if (end == m_end || *end != '"') {
    m_inside = inside;
    m_begins = true;
    m_token = here;
    return contents(begin);
  }
  const Piece piece = {
      {begin, static_cast<std::size_t>(end - begin)}, here.offset + 1, true, true, true, seen < 0x80};
  bool goOn = false;
  if (inside == Inside::text) {
    goOn = m_sink.text(piece, here);
    valueEnds(end + 1);
  } else {
    m_path.keyWhole(piece.raw, piece.ascii);
    goOn = m_sink.key(piece, here);
    m_next = Next::colon;
  }
  return goOn ? end + 1 : stop(end);
}

/// Reads a string on from between two of its characters.
const char* Reader::contents(const char* begin) {
  Piece piece = {{}, offset(begin), m_begins, false, true, true};
  unsigned char seen = 0;
  const char* problem = nullptr;
  const char* at = begin;
  for (; problem == nullptr; ++at) {
    at = endOfText(at, m_end, &seen);
    if (at == m_end || *at == '"') {
      break;
    }
    if (*at == '\\') {
      const Escape escape = escapeAt({at, static_cast<std::size_t>(m_end - at)});
      if (escape.kind == Escape::Kind::unfinished) {
        break;
      }
      if (escape.kind == Escape::Kind::unknown) {
        problem = kUnknownEscape;
        break;
      }
      piece.plain = false;
      at += escape.length - 1;
    } else if (*at == '\0') {
      problem = "has a NUL byte in a string";
      break;
    } else {
      piece.ascii = false;
      if (*at == '\n') {
        newLine(at);
      }
    }
  }
  const bool isUnfinished = problem == nullptr && (at == m_end || *at != '"');
  if (at == m_end) {
    at -= unfinishedUtf8({begin, static_cast<std::size_t>(at - begin)});
  }
  piece.raw = {begin, static_cast<std::size_t>(at - begin)};
  piece.ends = problem == nullptr && !isUnfinished;
  piece.ascii = piece.ascii && seen < 0x80;
  if (!tellString(piece)) {
    return stop(at);
  }
  if (problem != nullptr) {
    return damage(at, problem);
  }
  if (isUnfinished) {
    m_held.assign(at, m_end);
    return m_end;
  }
  m_inside = Inside::nothing;
  return at + 1;
}

/// Goes on with a string whose last block may have ended within an escape or a character.
const char* Reader::held(const char* at) {
  const std::size_t had = m_held.size();
  m_held.append(at, std::min<std::size_t>(kLongestUnit, static_cast<std::size_t>(m_end - at)));
  std::size_t done = 0;
  Escape::Kind kind = Escape::Kind::known;
  bool plain = true;
  while (done < had) {
    const std::string_view rest = std::string_view(m_held).substr(done);
    const bool isEscape = rest[0] == '\\';
    const Escape escape = isEscape ? escapeAt(rest) : characterAt(rest);
    kind = escape.kind;
    if (kind != Escape::Kind::known) {
      break;
    }
    plain = plain && !isEscape;
    done += escape.length;
  }
  if (!tellString({std::string_view(m_held).substr(0, done), m_base - had, m_begins, false, plain, !plain})) {
    return stop(at);
  }
  if (kind == Escape::Kind::unknown) {
    return damage(m_base - had + done, kUnknownEscape);
  }
  m_held.erase(0, done < had ? done : m_held.size());
  return done < had ? m_end : contents(at + (done - had));
}

/// Nothing is told of a part without bytes that does not end the string.
bool Reader::tellString(const Piece& piece) {
  if (piece.raw.empty() && !piece.ends) {
    return true;
  }
  m_begins = false;
  if (m_inside == Inside::text) {
    const bool goOn = m_sink.text(piece, m_token);
    if (piece.ends) {
      valueEnds(m_begin + (piece.offset + piece.raw.size() + 1 - m_base));
    }
    return goOn;
  }
  m_path.keyPart(piece.raw, piece.plain && piece.ascii, piece.begins);
  if (piece.ends) {
    m_path.keyEnds();
    m_next = Next::colon;
  }
  return m_sink.key(piece, m_token);
}

const char* Reader::scalar(const char* at, Inside inside) {
  m_path.valueBegins();
  m_inside = inside;
  m_begins = true;
  m_digits = Digits::start;
  m_token = place(at);
  return inside == Inside::literal ? literal(at) : number(at);
}

const char* Reader::literal(const char* begin) {
  const char* at = begin;
  for (; at != m_end && *m_rest != '\0'; ++at, ++m_rest) {
    if (*at != *m_rest) {
      return tellScalar(begin, at, false) == nullptr ? nullptr
                                                     : damage(at, "has a word that JSON does not know");
    }
  }
  return tellScalar(begin, at, *m_rest == '\0');
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

const char* Reader::number(const char* begin) {
  for (const char* at = begin; at != m_end; ++at) {
    const Digits with = withByte(m_digits, *at);
    if (with == Digits::done) {
      const bool ends = isNumber(m_digits);
      const char* const told = tellScalar(begin, at, ends);
      return told == nullptr || ends ? told : damage(at, "has a number that lacks a digit");
    }
    m_digits = with;
  }
  return tellScalar(begin, m_end, false);
}

const char* Reader::tellScalar(const char* begin, const char* at, bool ends) {
  const Piece piece = {{begin, static_cast<std::size_t>(at - begin)}, offset(begin), m_begins, ends};
  const bool goOn = (piece.raw.empty() && !ends) || m_sink.scalar(piece, m_token);
  m_begins = m_begins && piece.raw.empty();
  if (ends) {
    valueEnds(at);
    m_inside = Inside::nothing;
  }
  return goOn ? at : stop(at);
}

}  // namespace tarn
