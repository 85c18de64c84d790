#include "tarn/document/tarn_document_output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "tarn/document/tarn_document_nameless.h"

namespace tarn {

namespace {

std::string lastProblem() {
  return strerror(errno);
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

std::optional<std::string> OutputFile::open(const std::string& path, const std::string& folder) {
  m_path = resolved(path);
  m_folder = folder.empty() ? folderOf(m_path) : folder;
  if (!canBeReplaced(m_path)) {
    return "not an ordinary file";
  }
  m_descriptor = ::open(m_folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (m_descriptor == -1) {
    std::string temporary = m_folder + "/.tarn-XXXXXX";
    m_descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    m_temporary = m_descriptor == -1 ? "" : temporary;
  }
  return m_descriptor == -1 ? std::optional(lastProblem()) : std::nullopt;
}

std::optional<std::string> OutputFile::write(std::string_view bytes) {
  return writeAll(m_descriptor, bytes) ? std::nullopt : std::optional(lastProblem());
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

bool OutputFile::link(const std::string& path) const {
  const std::string nameless = "/proc/self/fd/" + std::to_string(m_descriptor);
  return linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// linkat(2) replaces nothing, so where something stands the file has a temporary name for the moment until
// rename(2).
bool OutputFile::name() {
  if (m_temporary.empty() && link(m_path)) {
    return true;
  }
  for (unsigned number = 0; m_temporary.empty(); ++number) {
    const std::string temporary =
        m_folder + "/.tarn-" + std::to_string(getpid()) + "-" + std::to_string(number);
    if (link(temporary)) {
      m_temporary = temporary;
    } else if (errno != EEXIST) {
      return false;
    }
  }
  return rename(m_temporary.c_str(), m_path.c_str()) == 0;
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

bool sameFile(const std::string& one, const std::string& other) {
  struct stat first = {};
  struct stat second = {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool samePlace(const std::string& one, const std::string& other) {
  const auto whole = [](const std::string& path) {
    std::error_code failed;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(path, failed), failed);
  };
  return sameFile(one, other) || whole(one) == whole(other);
}

}  // namespace tarn
