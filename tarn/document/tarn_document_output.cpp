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

/// A name can only be replaced where nothing or an ordinary file stands.
bool canBeReplaced(const std::string& path) {
  struct stat there = {};
  return lstat(path.c_str(), &there) != 0 || S_ISREG(there.st_mode) || S_ISLNK(there.st_mode);
}

/// Where a symbolic link leads, so that the link stays and its file is replaced.
std::string resolved(const std::string& path) {
  char* const found = realpath(path.c_str(), nullptr);
  const std::string result = found == nullptr ? path : found;
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
    unlink(m_temporary.c_str());
  }
}

std::optional<std::string> OutputFile::open(const std::string& path) {
  m_path = resolved(path);
  if (!canBeReplaced(m_path)) {
    return "not an ordinary file";
  }
  m_temporary = folderOf(m_path) + "/.tarn-XXXXXX";
  m_descriptor = mkostemp(m_temporary.data(), O_CLOEXEC);
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
  const bool named = fchmod(m_descriptor, mode & ~currentMask()) == 0 && fsync(m_descriptor) == 0 &&
                     rename(m_temporary.c_str(), m_path.c_str()) == 0;
  if (!named) {
    return lastProblem();
  }
  close(m_descriptor);
  m_descriptor = -1;
  return std::nullopt;
}

bool sameFile(const std::string& one, const std::string& other) {
  struct stat first = {};
  struct stat second = {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace tarn
