#pragma once
/// Reads a document as events: what mirel's writer produces and what strict JSON (RFC 8259) allows, in blocks
/// of any size and in memory that does not grow with the document.
///
///     Reader reader(sink);
///     while (more && reader.feed(block)) { ... }   // false: nothing further is read
///     const Ending ending = reader.finish();
///
/// Beyond RFC 8259 it takes raw bytes of every kind but NUL inside strings, and a byte order mark at the
/// beginning. Any value may be the root. Containers may be nested 10,000 deep. Blanks may follow the root,
/// anything else there is damage.

#include <cstdint>
#include <string>
#include <string_view>

#include "tarn/document/tarn_document_escape.h"
#include "tarn/document/tarn_document_path.h"

namespace tarn {

/// Lines and columns count from 1, columns in bytes; the offset counts from 0. A line feed ends a line
/// wherever it stands.
struct Place {
  std::uint64_t offset = 0, line = 1, column = 1;
};

/// A string, or the part of it that has come: the raw bytes between the quotes, escapes as they stand. No
/// part ends within an escape, a pair of surrogates or a character of UTF-8, so each can be understood by
/// itself.
struct Piece {
  std::string_view raw;             ///< in the reader's memory until the event returns, often in the block
  std::uint64_t offset = 0;         ///< of `raw` in the document
  bool begins = true, ends = true;  ///< a string within one block is one piece; the last one may be empty
  bool plain = true;                ///< no escape in this piece: its text is `raw`
  bool ascii = true;                ///< neither a byte below 0x20 in it nor one above 0x7F
};

/// What a reader tells, in document order, with the place of the bracket, of the opening quote, or of the
/// scalar's first byte. A sink overrides the events it needs. Returning false stops the reading.
class DocumentSink {
 public:
  virtual ~DocumentSink() = default;
  virtual bool open(Kind, const Place&) { return true; }
  virtual bool close(Kind, const Place&) { return true; }
  virtual bool key(const Piece&, const Place&) { return true; }
  virtual bool text(const Piece&, const Place&) { return true; }
  /// A number, `true`, `false` or `null`, as it stands; one that goes over a block's end in pieces.
  virtual bool scalar(const Piece&, const Place&) { return true; }
};

/// `whole`: one value and blanks. `cut`: the input ended early, everything before was handed out. `damaged`:
/// the grammar is broken at the place, everything before was handed out. `stopped`: a sink wanted no more.
enum class State : unsigned char { whole, cut, damaged, stopped };

struct Ending {
  State state = State::whole;
  Place place;            ///< of the trouble; of the end when whole
  std::string problem;    ///< what is wrong, in our own words: "ends inside a text"; empty when whole
  std::string innermost;  ///< JSON Pointer of the innermost member or element that was open at the trouble
  /// Offset behind the last bracket or value before the trouble: with `closers` behind it, what is before is
  /// a whole document, unless both are nothing.
  std::uint64_t wholeUntil = 0;
  std::string closers = {};  ///< the brackets of the containers that were open there, innermost first
};

class Reader {
 public:
  /// The sink is not owned, nor is the path.
  explicit Reader(DocumentSink& sink);
  Reader(DocumentSink& sink, Path& path);
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// Reads the next bytes of the document. False once nothing further will be read.
  bool feed(std::string_view block);
  /// The document ends here.
  Ending finish();
  /// Offset up to which events have told what strings there are: the rest of what was fed is the beginning of
  /// an escape or a character.
  std::uint64_t told() const { return m_base - m_held.size(); }

 private:
  enum class Next : unsigned char { mark, root, value, element, key, member, colon, separator, nothing };
  enum class Inside : unsigned char { nothing, key, text, literal, number };
  /// What of a number has been read.
  enum class Digits : unsigned char {
    start,
    sign,
    zero,
    whole,
    point,
    fraction,
    exponent,
    powerSign,
    power,
    done
  };

  // Each takes what stands at its argument and gives where it ends; at the block's end it will go on from
  // there. Null when nothing further is read.
  const char* resume(const char* at);
  const char* pastMark(const char* at);
  const char* pastBlanks(const char* at);
  const char* token(const char* at);
  const char* value(const char* at);
  const char* member(const char* at);
  const char* open(const char* at, Kind kind);
  const char* close(const char* at, Kind kind);
  const char* separator(const char* at);
  const char* colon(const char* at);
  const char* string(const char* at, Inside inside);
  const char* contents(const char* begin);
  const char* held(const char* at);
  const char* scalar(const char* at, Inside inside);
  const char* literal(const char* begin);
  const char* number(const char* begin);
  const char* tellScalar(const char* begin, const char* at, bool ends);
  const char* damage(std::uint64_t offset, const char* problem);
  const char* damage(const char* at, const char* problem) { return damage(offset(at), problem); }
  const char* stop(const char* at);

  bool tellString(const Piece& piece);
  void valueEnds(const char* behind);
  void end(State state, std::uint64_t offset, const char* problem);
  const char* whatIsOpen() const;
  static bool isNumber(Digits digits);
  static Digits withByte(Digits digits, char byte);

  void newLine(const char* at) {
    ++m_line;
    m_lineStart = offset(at) + 1;
  }
  std::uint64_t offset(const char* at) const { return m_base + static_cast<std::uint64_t>(at - m_begin); }
  Place place(std::uint64_t offset) const { return {offset, m_line, offset - m_lineStart + 1}; }
  Place place(const char* at) const { return place(offset(at)); }

  DocumentSink& m_sink;
  Path m_ownPath;
  Path& m_path;
  const char *m_begin = nullptr, *m_end = nullptr;  ///< of the block
  std::uint64_t m_base = 0;                         ///< offset of the block
  std::uint64_t m_line = 1, m_lineStart = 0;        ///< the line, and its offset
  Next m_next = Next::mark;
  Inside m_inside = Inside::nothing;
  bool m_begins = true;  ///< no piece of the string or scalar has been told
  Digits m_digits = Digits::start;
  const char* m_rest = "";  ///< of the literal
  Place m_token;            ///< where the string or scalar begins
  std::string m_held;       ///< the beginning of an escape or a character at the end of the last block
  bool m_over = false;
  Ending m_ending;
};

}  // namespace tarn
