#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "platform/services.h"

namespace {

void ignoreSignal(int) {}

/// Opens /dev/null in place of a standard descriptor that the caller left closed, so that no file, pipe or
/// database connection opened later takes its number and receives what is printed.
unsigned int openStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // open(2) takes the lowest free number. No O_CLOEXEC: commands inherit these three.
    if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", O_RDWR) == -1) {
      return static_cast<unsigned int>(errno);
    }
  }
  return 0;
}

/// A handler, not SIG_IGN: commands would inherit that, while exec gives them the default instead of a
/// handler.
unsigned int surviveBrokenPipes() {
  struct sigaction action = {};
  action.sa_handler = ignoreSignal;
  action.sa_flags = SA_RESTART;
  return sigaction(SIGPIPE, &action, nullptr) == 0 ? 0 : static_cast<unsigned int>(errno);
}

}  // namespace

unsigned int ossOneTimeOnly() {
  const unsigned int pipes = surviveBrokenPipes();
  const unsigned int descriptors = openStandardDescriptors();
  return pipes != 0 ? pipes : descriptors;
}

// The handler stays: what is still buffered for standard output is written after this call.
void ossTerminate() {}
