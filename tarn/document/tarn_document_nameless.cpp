#include "tarn/document/tarn_document_nameless.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace tarn {

int namelessFile() {
  const char* const given = getenv("TMPDIR");
  std::string folder = given == nullptr || *given == '\0' ? "/tmp" : given;
  const int nameless = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (nameless != -1) {
    return nameless;
  }
  folder += "/.tarn-XXXXXX";  // not every file system knows such files
  const int named = mkostemp(folder.data(), O_CLOEXEC);
  if (named != -1) {
    unlink(folder.c_str());
  }
  return named;
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written < 0 ? 0 : written));
  }
  return true;
}

bool readAll(int descriptor, std::uint64_t offset, char* into, std::size_t size) {
  while (size > 0) {
    const ssize_t count = pread(descriptor, into, size, static_cast<off_t>(offset));
    if (count == 0 || (count < 0 && errno != EINTR)) {
      return false;
    }
    const auto got = static_cast<std::size_t>(count < 0 ? 0 : count);
    into += got;
    offset += got;
    size -= got;
  }
  return true;
}

}  // namespace tarn
