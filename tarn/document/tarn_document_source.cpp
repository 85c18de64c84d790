#include "tarn/document/tarn_document_source.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "tarn/document/tarn_document_nameless.h"

namespace tarn {

namespace {

constexpr std::size_t kBlock = 256 << 10;

}  // namespace

void Source::closeOwn() {
  if (m_isOwn && m_input != -1) {
    close(m_input);
  }
}

Source::~Source() {
  closeOwn();
  if (m_spool != -1) {
    close(m_spool);
  }
}

std::optional<std::string> Source::open(const std::string& path, int input, Passes passes) {
  m_isOwn = path != "-";
  m_again = passes == Passes::several;
  m_input = m_isOwn ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : input;
  struct stat about = {};
  if (m_input == -1 || fstat(m_input, &about) != 0) {
    return strerror(errno);
  }
  m_start = lseek(m_input, 0, SEEK_CUR);
  m_canSeek = S_ISREG(about.st_mode) && m_start >= 0;
  m_size = m_canSeek && about.st_size > m_start ? static_cast<std::uint64_t>(about.st_size - m_start) : 0;
  m_buffer = std::make_unique_for_overwrite<char[]>(kBlock);
  return std::nullopt;
}

void Source::fail() {
  m_problem = strerror(errno);
  m_length = 0;
  m_isLast = true;
}

/// Fills the buffer, so that a document that fits is never read twice.
bool Source::fill() {
  for (m_length = 0; m_length < kBlock;) {
    const ssize_t count = read(m_input, m_buffer.get() + m_length, kBlock - m_length);
    if (count == 0) {
      m_isLast = true;
      break;
    }
    if (count < 0 && errno != EINTR) {
      return false;
    }
    m_length += static_cast<std::size_t>(count < 0 ? 0 : count);
  }
  m_isKept = false;
  return true;
}

/// The block in the buffer is going to be overwritten and cannot be read again.
bool Source::keep() {
  if (m_canSeek || !m_again || m_isKept) {
    return true;
  }
  m_isKept = true;
  m_spool = m_spool == -1 ? namelessFile() : m_spool;
  return m_spool != -1 && writeAll(m_spool, {m_buffer.get(), m_length});
}

std::string_view Source::next() {
  if (!m_isReplayed) {
    if (m_isLast) {
      return {};
    }
    m_isFirst = m_position == 0;
    if (!keep() || !fill()) {
      fail();
    }
  }
  m_isReplayed = false;
  m_position += m_length;
  return {m_buffer.get(), m_length};
}

std::size_t Source::send(int output, std::size_t count) {
  const ssize_t sent = m_canSeek && !m_isReplayed ? sendfile(output, m_input, nullptr, count) : 0;
  if (sent <= 0) {
    return 0;
  }
  m_isFirst = false;
  m_position += static_cast<std::uint64_t>(sent);
  return static_cast<std::size_t>(sent);
}

void Source::rewind() {
  m_position = 0;
  if (m_isFirst) {
    m_isReplayed = m_length > 0;
    return;
  }
  if (!keep() || lseek(m_canSeek ? m_input : m_spool, m_canSeek ? m_start : 0, SEEK_SET) < 0) {
    return fail();
  }
  if (!m_canSeek) {
    closeOwn();
    m_input = std::exchange(m_spool, -1);
    m_isOwn = m_canSeek = true;
    m_start = 0;
  }
  m_isLast = false;
}

}  // namespace tarn
