#include "platform/host/services/mirel_host_descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace host {

namespace {

unsigned int lastError() {
  return static_cast<unsigned int>(errno);
}

/// O_NONBLOCK keeps the opening of FIFOs and devices from waiting.
unsigned int openPath(const char* path, int flags, mode_t permissions, int* descriptor) {
  *descriptor = -1;
  if (path == nullptr) {
    return EFAULT;
  }
  do {
    *descriptor = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, permissions);
  } while (*descriptor == -1 && errno == EINTR);
  return *descriptor == -1 ? lastError() : 0;
}

unsigned int refuseUnlessRegular(int descriptor) {
  struct stat status;
  if (fstat(descriptor, &status) != 0) {
    return lastError();
  }
  if (S_ISREG(status.st_mode)) {
    return 0;
  }
  return S_ISDIR(status.st_mode) ? EISDIR : ENOTSUP;
}

}  // namespace

// O_NONBLOCK stays on: the few kernel files that wait for events (/proc/kmsg) then fail instead.
unsigned int openForReading(const char* path, int* descriptor) {
  unsigned int code = openPath(path, O_RDONLY, 0, descriptor);
  if (code == 0) {
    code = refuseUnlessRegular(*descriptor);
  }
  if (code != 0 && *descriptor != -1) {
    close(*descriptor);
    *descriptor = -1;
  }
  return code;
}

unsigned int openForWriting(const char* path, unsigned int permissions, int* descriptor) {
  const unsigned int code = openPath(path, O_WRONLY | O_CREAT | O_TRUNC, permissions, descriptor);
  if (code == 0) {
    fcntl(*descriptor, F_SETFL, fcntl(*descriptor, F_GETFL) & ~O_NONBLOCK);  // a slow reader is waited for
  }
  return code;
}

unsigned int readFully(int descriptor, void* buffer, unsigned long count, unsigned long* received) {
  *received = 0;
  while (*received < count) {
    const ssize_t part = read(descriptor, static_cast<char*>(buffer) + *received, count - *received);
    if (part == 0) {
      break;
    }
    if (part > 0) {
      *received += static_cast<unsigned long>(part);
    } else if (errno != EINTR) {
      return lastError();
    }
  }
  return 0;
}

unsigned int writeFully(int descriptor, const void* data, unsigned long count, unsigned long* written) {
  *written = 0;
  while (*written < count) {
    const ssize_t part = write(descriptor, static_cast<const char*>(data) + *written, count - *written);
    if (part == 0) {
      return EIO;  // a device that takes nothing and says nothing
    }
    if (part > 0) {
      *written += static_cast<unsigned long>(part);
    } else if (errno != EINTR) {
      return lastError();
    }
  }
  return 0;
}

// Linux releases the descriptor even when close(2) is interrupted, so a second try could hit another file.
unsigned int closeDescriptor(int descriptor) {
  return close(descriptor) == 0 || errno == EINTR ? 0 : lastError();
}

}  // namespace host
