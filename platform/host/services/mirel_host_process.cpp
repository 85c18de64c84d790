#include <fcntl.h>
#include <locale.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

#include "platform/host/services/mirel_host_heap.h"
#include "platform/services.h"

namespace {

void ignoreSignal(int) {}

/// Opens /dev/null in place of a standard descriptor that the caller left closed, so that no file, pipe or
/// database connection opened later takes its number and receives what is printed. What is printed on a
/// standard output that was closed still fails.
unsigned int openStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    const int access = descriptor == STDOUT_FILENO ? O_RDONLY : O_RDWR;
    // open(2) takes the lowest free number. No O_CLOEXEC: commands inherit these three.
    if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", access) == -1) {
      return static_cast<unsigned int>(errno);
    }
  }
  return 0;
}

/// A reader that goes away and a limit on the size of files are errors of the write, no more. Handlers, not
/// SIG_IGN: commands would inherit that, while exec gives them the default instead of a handler.
unsigned int surviveFailingWrites() {
  struct sigaction action = {};
  action.sa_handler = ignoreSignal;
  action.sa_flags = SA_RESTART;
  const bool set = sigaction(SIGPIPE, &action, nullptr) == 0 && sigaction(SIGXFSZ, &action, nullptr) == 0;
  return set ? 0 : static_cast<unsigned int>(errno);
}

/// Database drivers set the locale of the process to that of the environment. The thread has one of its own,
/// so letter case stays that of ASCII. Nothing is allocated for "C".
unsigned int keepPlainLocale() {
  const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return plain != nullptr && uselocale(plain) != nullptr ? 0 : static_cast<unsigned int>(errno);
}

}  // namespace

unsigned int ossOneTimeOnly() {
  prepareHeap();
  for (const unsigned int code : {surviveFailingWrites(), keepPlainLocale(), openStandardDescriptors()}) {
    if (code != 0) {
      return code;
    }
  }
  return 0;
}

// The handlers stay: what is still buffered for standard output is written after this call.
void ossTerminate() {}
