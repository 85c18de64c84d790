#include "tarn/document/tarn_document_strict.h"

#include "tarn/document/tarn_document_json.h"

namespace tarn {

bool StrictCheck::isStrict(std::string_view raw) {
  return tarn::isStrict(raw);
}

void StrictWriter::appendNumber() {
  if (m_path.number() > 1) {
    out += '#' + std::to_string(m_path.number());
  }
}

void StrictLayout::begin(std::string_view block, std::uint64_t offset) {
  m_block = block;
  m_offset = offset;
}

void StrictLayout::copyUntil(std::uint64_t offset) {
  if (offset > m_done) {
    out += m_block.substr(m_done - m_offset, offset - m_done);
    m_done = offset;
  }
}

/// What is in the block and strict stays for the next copy. What was held back is not in the block any more.
bool StrictLayout::text(const Piece& piece, const Place&) {
  if (piece.offset < m_offset || !(piece.ascii || isStrict(piece.raw))) {
    copyUntil(piece.offset);
    appendStrict(piece.raw, out);
    m_done = piece.offset + piece.raw.size();
  }
  return true;
}

bool StrictLayout::key(const Piece& piece, const Place& place) {
  text(piece, place);
  if (piece.ends) {
    copyUntil(piece.offset + piece.raw.size());
    appendNumber();
  }
  return true;
}

void StrictLine::separate() {
  if (m_needsComma) {
    out += ',';
  }
}

bool StrictLine::open(Kind kind, const Place&) {
  separate();
  out += kind == Kind::object ? '{' : '[';
  m_needsComma = false;
  return true;
}

bool StrictLine::close(Kind kind, const Place&) {
  out += kind == Kind::object ? '}' : ']';
  m_needsComma = true;
  return true;
}

void StrictLine::appendQuoted(const Piece& piece) {
  if (piece.begins) {
    separate();
    out += '"';
  }
  if (piece.ascii) {
    out += piece.raw;
  } else {
    appendStrict(piece.raw, out);
  }
}

bool StrictLine::key(const Piece& piece, const Place&) {
  appendQuoted(piece);
  if (piece.ends) {
    appendNumber();
    out += "\":";
  }
  m_needsComma = false;
  return true;
}

bool StrictLine::text(const Piece& piece, const Place&) {
  appendQuoted(piece);
  if (piece.ends) {
    out += '"';
  }
  m_needsComma = true;
  return true;
}

bool StrictLine::scalar(const Piece& piece, const Place&) {
  if (piece.begins) {
    separate();
  }
  out += piece.raw;
  m_needsComma = true;
  return true;
}

}  // namespace tarn
