#pragma once
/// Reads a document as events: what mirel's writer produces and what strict JSON (RFC 8259) allows, in blocks
/// of any size and in memory that does not grow with the document.
///
///     Reader reader(sink);
///     while (reader.feed(block)) { ... }   // false: damaged, nothing further is read
///     const Ending ending = reader.finish();
///
/// Beyond RFC 8259 it takes raw bytes of every kind but NUL inside strings, and a byte order mark at the
/// beginning. Any value may be the root. Containers may be nested 10,000 deep. Blanks may follow the root,
/// anything else there is damage.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Lines and columns count from 1, columns in bytes; the offset counts from 0.
struct Place {
  std::uint64_t offset = 0, line = 1, column = 1;
};

enum class Kind : unsigned char { object, array };

/// A string, or the part of it that has come: the raw bytes between the quotes, escapes as they stand.
struct Piece {
  std::string_view raw;
  bool begins = true, ends = true;  ///< a string within one block is one piece
  bool plain = true;                ///< no escape in this piece: its text is `raw`
};

/// What a reader tells, in document order. A sink overrides the events it needs. Returning false stops the
/// reading.
class DocumentSink {
 public:
  virtual ~DocumentSink() = default;
  virtual bool open(Kind, const Place&) { return true; }
  virtual bool close(Kind, const Place&) { return true; }
  virtual bool key(const Piece&, const Place&) { return true; }
  virtual bool text(const Piece&, const Place&) { return true; }
  /// A number, `true`, `false` or `null`, as it stands; a long one in pieces.
  virtual bool scalar(const Piece&, const Place&) { return true; }
};

/// `whole`: one value and blanks. `cut`: the input ended early, everything before was handed out. `damaged`:
/// the grammar is broken at the place, everything before was handed out. `stopped`: a sink wanted no more.
enum class State { whole, cut, damaged, stopped };

struct Ending {
  State state = State::whole;
  Place place;            ///< of the trouble; of the end when whole
  std::string problem;    ///< one of our own sentences, empty when whole
  std::string innermost;  ///< JSON Pointer of the innermost member or element that was open at the trouble
};

/// Appends the text that the raw bytes of a string (or of a piece, see `Piece`) stand for: escapes undone,
/// bytes as they are. A surrogate without its partner becomes U+FFFD.
void appendUnescaped(std::string_view raw, std::string& text);

}  // namespace tarn
