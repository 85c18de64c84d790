#include "tarn/fleet/load/tarn_fleet_zstd.h"

#include <zstd.h>

namespace tarn {

void ZstdReader::Free::operator()(ZSTD_DCtx_s* stream) const {
  ZSTD_freeDStream(stream);
}

ZstdReader::ZstdReader() : m_stream(ZSTD_createDStream()), m_piece(ZSTD_DStreamOutSize(), '\0') {}

bool ZstdReader::isBeginning(std::string_view bytes) {
  return bytes.starts_with("\x28\xB5\x2F\xFD");
}

bool ZstdReader::add(std::string_view bytes, const TakeBytes& take) {
  ZSTD_inBuffer in = {bytes.data(), bytes.size(), 0};
  for (bool goesOn = true; goesOn && in.pos < in.size;) {
    ZSTD_outBuffer out = {m_piece.data(), m_piece.size(), 0};  // holds a whole block
    m_missing = ZSTD_decompressStream(m_stream.get(), &out, &in);
    if (ZSTD_isError(m_missing) != 0) {
      return false;
    }
    goesOn = take({m_piece.data(), out.pos});
  }
  return true;
}

}  // namespace tarn
