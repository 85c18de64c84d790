#include "tarn/document/tarn_document_output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tarn {

namespace {

std::string lastProblem() {
  return strerror(errno);
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

std::string temporaryName(const std::string& path) {
  return folderOf(path) + "/.tarn-XXXXXX";
}

/// A name can only be replaced where nothing or an ordinary file stands.
bool canBeReplaced(const std::string& path) {
  struct stat there = {};
  return lstat(path.c_str(), &there) != 0 || S_ISREG(there.st_mode) || S_ISLNK(there.st_mode);
}

/// Where a symbolic link leads, so that the link stays and its file is replaced.
std::string resolved(const std::string& path) {
  char* const found = realpath(path.c_str(), nullptr);
  std::string result = found == nullptr ? path : found;
  free(found);
  return result;
}

mode_t currentMask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

}  // namespace

OutputFile::~OutputFile() {
  if (m_descriptor != -1) {
    close(m_descriptor);
  }
  if (!m_temporary.empty()) {
    unlink(m_temporary.c_str());
  }
}

std::optional<std::string> OutputFile::open(const std::string& path) {
  m_path = resolved(path);
  if (!canBeReplaced(m_path)) {
    return "not an ordinary file";
  }
  m_descriptor = ::open(folderOf(m_path).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (m_descriptor == -1) {
    std::string temporary = temporaryName(m_path);
    m_descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    m_temporary = m_descriptor == -1 ? "" : temporary;
  }
  return m_descriptor == -1 ? std::optional(lastProblem()) : std::nullopt;
}

std::optional<std::string> OutputFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return lastProblem();
    }
    bytes.remove_prefix(static_cast<std::size_t>(written < 0 ? 0 : written));
  }
  return std::nullopt;
}

std::optional<std::string> OutputFile::finish(unsigned int mode) {
  const bool named = fchmod(m_descriptor, mode & ~currentMask()) == 0 && fsync(m_descriptor) == 0 && name();
  if (!named) {
    return lastProblem();
  }
  m_temporary.clear();
  close(m_descriptor);
  m_descriptor = -1;
  return std::nullopt;
}

// linkat(2) replaces nothing, so the file gets a temporary name for the moment until rename(2).
bool OutputFile::name() {
  if (m_temporary.empty()) {
    std::string temporary = temporaryName(m_path);
    const int place = mkostemp(temporary.data(), O_CLOEXEC);
    if (place == -1) {
      return false;
    }
    close(place);
    unlink(temporary.c_str());
    const std::string nameless = "/proc/self/fd/" + std::to_string(m_descriptor);
    if (linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, temporary.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      return false;
    }
    m_temporary = temporary;
  }
  return rename(m_temporary.c_str(), m_path.c_str()) == 0;
}

bool sameFile(const std::string& one, const std::string& other) {
  struct stat first = {};
  struct stat second = {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace tarn
