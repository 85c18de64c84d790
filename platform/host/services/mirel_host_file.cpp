#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/host/services/mirel_host_descriptor.h"
#include "platform/services.h"

namespace {

constexpr unsigned int kAccessRead = 1;
constexpr unsigned int kAccessWrite = 2;

/// More than any kernel file that makes sense to read as text; /proc/self/pagemap would go on for gigabytes.
constexpr unsigned long kMaxUnsized = 64UL << 20;

/// The size of a file that reports none, found by reading. pread(2) leaves the reading position alone.
unsigned int measure(int descriptor, unsigned long* bytes) {
  std::array<char, 65536> block;
  *bytes = 0;
  while (*bytes <= kMaxUnsized) {
    const ssize_t part = pread(descriptor, block.data(), block.size(), static_cast<off_t>(*bytes));
    if (part == 0) {
      return 0;
    }
    if (part > 0) {
      *bytes += static_cast<unsigned long>(part);
    } else if (errno != EINTR) {
      return static_cast<unsigned int>(errno);
    }
  }
  return EFBIG;
}

}  // namespace

OSSHFile::OSSHFile() : m_handle(-1) {}

OSSHFile::~OSSHFile() {
  close();
}

unsigned int OSSHFile::open(const OSSFileOpenParam* parameters) {
  close();
  int descriptor = -1;
  unsigned int code = EINVAL;
  if (parameters->access == kAccessRead) {
    code = host::openForReading(parameters->path, &descriptor);
  } else if (parameters->access == kAccessWrite) {
    code = host::openForWriting(parameters->path, parameters->permissions, &descriptor);
  }
  m_handle = descriptor;
  return code;
}

unsigned int OSSHFile::write(const OSSFileWriteParam* parameters, unsigned long* written) {
  return host::writeFully(static_cast<int>(m_handle), parameters->data, parameters->count, written);
}

unsigned int OSSHFile::read(const OSSFileReadParam* parameters, void* buffer, unsigned long* received) {
  return host::readFully(static_cast<int>(m_handle), buffer, parameters->count, received);
}

unsigned int OSSHFile::sync() {
  int result;
  do {
    result = fsync(static_cast<int>(m_handle));
  } while (result != 0 && errno == EINTR);
  const bool nothingToSync = errno == EINVAL || errno == EROFS;  // pipes and devices
  return result == 0 || nothingToSync ? 0 : static_cast<unsigned int>(errno);
}

// The kernel's own files (/proc) report a size of 0 whatever they hold; their size is what can be read.
unsigned int OSSHFile::getSize(unsigned long* bytes) {
  *bytes = 0;
  const int descriptor = static_cast<int>(m_handle);
  struct stat status;
  if (fstat(descriptor, &status) != 0) {
    return static_cast<unsigned int>(errno);
  }
  if (status.st_size == 0 && (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY) {
    return measure(descriptor, bytes);
  }
  *bytes = static_cast<unsigned long>(status.st_size);
  return 0;
}

unsigned int OSSHFile::close() {
  const int descriptor = static_cast<int>(m_handle);
  m_handle = -1;
  return host::closeDescriptor(descriptor);
}
