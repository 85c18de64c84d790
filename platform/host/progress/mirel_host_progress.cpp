// One line on the terminal, redrawn every second by a thread of its own, which exists only where standard
// error is a terminal. Work that is done within a second is never shown, and the cursor always rests at the
// beginning of the line, so that whatever a command prints starts where it would have.
//
// Nothing is allocated: memory that runs out must not end the thread, and the process with it.

#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string_view>

#include "platform/progress.h"

namespace {

using Clock = std::chrono::steady_clock;

/// More of a key is not kept, however wide the terminal is.
constexpr std::size_t kWorkSize = 1024;

/// Control bytes of a key would move the cursor.
char printable(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < ' ' || byte == 0x7f ? '?' : character;
}

class ProgressLine {
 public:
  /// Without a thread, as where no more are allowed, nothing is ever shown.
  ProgressLine() { m_started = pthread_create(&m_thread, nullptr, &ProgressLine::run, this) == 0; }
  ~ProgressLine() {
    {
      const std::lock_guard lock(m_mutex);
      m_ended = true;
    }
    m_changed.notify_one();
    if (m_started) {
      pthread_join(m_thread, nullptr);
    }
  }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const char* work) {
    const std::lock_guard lock(m_mutex);
    erase();
    const std::size_t length = strnlen(work, kWorkSize - 1);
    *std::transform(work, work + length, m_work.begin(), printable) = '\0';
    ++m_count;
    m_begun = Clock::now();
  }

  void hide() {
    const std::lock_guard lock(m_mutex);
    erase();
    m_work[0] = '\0';
  }

 private:
  static void* run(void* line) {
    static_cast<ProgressLine*>(line)->redraw();
    return nullptr;
  }
  void redraw();
  void draw();
  void erase();

  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::array<char, kWorkSize> m_work{};  // empty: nothing to show
  unsigned long m_count = 0;
  Clock::time_point m_begun = Clock::now();
  const Clock::time_point m_start = Clock::now();
  bool m_drawn = false;
  bool m_ended = false;
  bool m_started = false;
  pthread_t m_thread{};
};

void write(std::string_view text) {
  // A terminal that went away is no reason to stop.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

std::size_t terminalWidth() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void ProgressLine::redraw() {
  // Signals belong to the thread that does the work.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  std::unique_lock lock(m_mutex);
  while (!m_changed.wait_for(lock, std::chrono::seconds(1), [this] { return m_ended; })) {
    if (m_work[0] != '\0' && Clock::now() - m_begun >= std::chrono::seconds(1)) {
      draw();
    }
  }
}

void ProgressLine::draw() {
  const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_start).count();
  constexpr std::string_view end = "\033[K\r";
  std::array<char, kWorkSize + 64> line;
  const int length = std::snprintf(line.data(), line.size() - end.size(), "\r[%lld s] %lu: %s",
                                   static_cast<long long>(elapsed), m_count, m_work.data());
  const std::size_t shown = std::min(static_cast<std::size_t>(length), terminalWidth());  // with its \r
  end.copy(&line[shown], end.size());
  write({line.data(), shown + end.size()});
  m_drawn = true;
}

void ProgressLine::erase() {
  if (m_drawn) {
    write("\r\033[K");
    m_drawn = false;
  }
}

/// The line, or null where nobody watches.
ProgressLine* line() {
  static const bool watched = isatty(STDERR_FILENO) == 1;
  if (!watched) {
    return nullptr;
  }
  static ProgressLine only;
  return &only;
}

}  // namespace

void progressShow(const char* work) {
  if (ProgressLine* shown = line()) {
    shown->show(work);
  }
}

void progressHide() {
  if (ProgressLine* shown = line()) {
    shown->hide();
  }
}
