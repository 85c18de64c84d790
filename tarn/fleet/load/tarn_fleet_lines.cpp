#include "tarn/fleet/load/tarn_fleet_lines.h"

#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <type_traits>

#include "tarn/fleet/load/tarn_fleet_zstd.h"

namespace tarn {

namespace {

constexpr unsigned kBlock = 256 << 10;
constexpr const char* kTorn = "compressed, and not whole";

struct CloseFile {
  void operator()(gzFile file) const { gzclose_r(file); }
};
using OpenFile = std::unique_ptr<std::remove_pointer_t<gzFile>, CloseFile>;

std::string lastError(int error) {
  return strerror(error != 0 ? error : EIO);
}

class LineSplitter {
 public:
  explicit LineSplitter(const TakeLine& take) : m_take(take) {}

  void add(std::string_view bytes) {
    for (std::size_t end = 0; (end = bytes.find('\n')) != std::string_view::npos;
         bytes.remove_prefix(end + 1)) {
      m_take(m_begun.empty() ? bytes.substr(0, end) : m_begun.append(bytes.substr(0, end)));
      m_begun.clear();
    }
    m_begun += bytes;
  }
  void finish() {
    if (!m_begun.empty()) {
      m_take(m_begun);
    }
  }

 private:
  const TakeLine& m_take;
  std::string m_begun;
};

/// zlib hands out what is not of gzip's as it is.
class LogFile {
 public:
  LogFile(const std::string& file, const TakeLine& take)
      : m_file(gzopen(file.c_str(), "rbe")), m_lines(take) {}

  std::optional<std::string> read() {
    if (!m_file) {
      return lastError(errno);
    }
    gzbuffer(m_file.get(), kBlock);
    std::string block(kBlock, '\0');
    bool isGood = true;
    for (int count = 0; isGood && (count = gzread(m_file.get(), block.data(), kBlock)) > 0;) {
      isGood = add({block.data(), static_cast<std::size_t>(count)});
    }
    std::optional<std::string> problem = isGood ? problemAtEnd() : kTorn;
    m_lines.finish();
    return problem;
  }

 private:
  bool add(std::string_view bytes) {
    if (!m_isBegun && ZstdReader::isBeginning(bytes)) {
      m_zstd = std::make_unique<ZstdReader>();
    }
    m_isBegun = true;
    if (m_zstd) {
      return m_zstd->add(bytes, [this](std::string_view piece) {
        m_lines.add(piece);
        return true;
      });
    }
    m_lines.add(bytes);
    return true;
  }

  std::optional<std::string> problemAtEnd() {
    const int error = errno;
    int code = Z_OK;
    gzerror(m_file.get(), &code);
    if (code == Z_ERRNO) {
      return lastError(error);
    }
    return code != Z_OK || (m_zstd && !m_zstd->isWhole()) ? std::optional<std::string>(kTorn) : std::nullopt;
  }

  OpenFile m_file;
  LineSplitter m_lines;
  std::unique_ptr<ZstdReader> m_zstd;
  bool m_isBegun = false;
};

}  // namespace

std::optional<std::string> readLines(const std::string& file, const TakeLine& take) {
  errno = 0;
  return LogFile(file, take).read();
}

}  // namespace tarn
