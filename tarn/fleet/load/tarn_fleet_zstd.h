#pragma once
/// Unpacks what zstd has compressed, piece by piece, in constant memory.

#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct ZSTD_DCtx_s;

namespace tarn {

class ZstdReader {
 public:
  ZstdReader();

  /// Whether these bytes begin a file of zstd's.
  static bool isBeginning(std::string_view bytes);

  /// Hands out what is in the next bytes of the file; false from `take` ends it. False when they are damaged.
  using TakeBytes = std::function<bool(std::string_view bytes)>;
  bool add(std::string_view bytes, const TakeBytes& take);
  /// Whether the file may end here.
  bool isWhole() const { return m_missing == 0; }

 private:
  struct Free {
    void operator()(ZSTD_DCtx_s* stream) const;
  };
  std::unique_ptr<ZSTD_DCtx_s, Free> m_stream;
  std::string m_piece;
  std::size_t m_missing = 1;  ///< 0 behind a frame
};

}  // namespace tarn
