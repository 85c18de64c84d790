#pragma once
/// Writes a document as JSON that every reader takes: bytes below 0x20 inside strings as escapes, U+FFFD for
/// what is no UTF-8, no byte order mark, and a name of its own for each member where wanted. Everything else
/// stays byte for byte, or, on one line, only the tokens stay.

#include <cstdint>
#include <string>
#include <string_view>

#include "tarn/document/tarn_document_reader.h"

namespace tarn {

/// Looks whether a document would be changed.
class StrictCheck : public DocumentSink {
 public:
  bool key(const Piece& piece, const Place& place) override { return text(piece, place); }
  bool text(const Piece& piece, const Place&) override {
    m_isStrict = m_isStrict && (piece.ascii || isStrict(piece.raw));
    return true;
  }
  bool isStrict() const { return m_isStrict; }

 private:
  static bool isStrict(std::string_view raw);

  bool m_isStrict = true;
};

/// Both writers gather in `out`, which the caller empties; a path that numbers gives repeated names.
class StrictWriter : public DocumentSink {
 public:
  explicit StrictWriter(const Path& path) : m_path(path) {}
  /// The block that is going to be read, and its offset.
  virtual void begin(std::string_view, std::uint64_t) {}
  /// The block was read, and all strings up to this offset were told.
  virtual void end(std::uint64_t) {}

  std::string out;

 protected:
  /// "#2" behind a repeated name.
  void appendNumber();

 private:
  const Path& m_path;
};

/// Keeps the layout.
class StrictLayout : public StrictWriter {
 public:
  /// `from`: where the document begins, behind a byte order mark.
  StrictLayout(const Path& path, std::uint64_t from) : StrictWriter(path), m_done(from) {}

  void begin(std::string_view block, std::uint64_t offset) override;
  void end(std::uint64_t told) override { copyUntil(told); }
  bool key(const Piece& piece, const Place& place) override;
  bool text(const Piece& piece, const Place& place) override;

 private:
  void copyUntil(std::uint64_t offset);

  std::string_view m_block;
  std::uint64_t m_offset = 0;  ///< of the block
  std::uint64_t m_done;        ///< written up to here
};

/// Writes nothing but the tokens.
class StrictLine : public StrictWriter {
 public:
  using StrictWriter::StrictWriter;

  bool open(Kind kind, const Place& place) override;
  bool close(Kind kind, const Place& place) override;
  bool key(const Piece& piece, const Place& place) override;
  bool text(const Piece& piece, const Place& place) override;
  bool scalar(const Piece& piece, const Place& place) override;

 private:
  void separate();
  void appendQuoted(const Piece& piece);

  bool m_needsComma = false;
};

}  // namespace tarn
