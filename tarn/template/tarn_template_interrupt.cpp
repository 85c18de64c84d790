#include "tarn/template/tarn_template_interrupt.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>

namespace tarn {

namespace {

std::atomic<int> interrupts = 0, served = 0;
int ends[2] = {-1, -1};
struct sigaction before = {};
std::thread killer;

/// The parent of a process as /proc tells it; 0 when it is gone.
pid_t parentOf(const std::filesystem::path& process) {
  std::ifstream file(process / "stat");
  std::string text;
  std::getline(file, text, '\0');
  // "PID (NAME) STATE PARENT ...", where NAME may hold anything.
  const std::size_t end = text.rfind(')');
  return end == std::string::npos || end + 3 > text.size() ? 0 : atoi(text.c_str() + end + 3);
}

std::multimap<pid_t, pid_t> childrenByParent() {
  std::multimap<pid_t, pid_t> children;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
    if (const pid_t process = atoi(entry.path().filename().c_str()); process > 0) {
      children.emplace(parentOf(entry.path()), process);
    }
  }
  return children;
}

void killBelow(pid_t parent, const std::multimap<pid_t, pid_t>& children) {
  const auto [first, last] = children.equal_range(parent);
  for (auto child = first; child != last; ++child) {
    kill(child->second, SIGKILL);
    killBelow(child->second, children);
  }
}

/// Waits for interrupts, apart from the work that they end.
void serve() {
  char sign = '\0';
  while (read(ends[0], &sign, 1) == 1 && sign != '\0') {
    killBelow(getpid(), childrenByParent());
    if (served > 0) {
      signal(SIGINT, SIG_DFL);
      kill(getpid(), SIGINT);
    }
    ++served;
    served.notify_one();
  }
}

/// Counts here: what a terminal ends together with us must not look as if it had ended by itself.
void passOn(int) {
  ++interrupts;
  [[maybe_unused]] const ssize_t written = write(ends[1], "!", 1);
}

}  // namespace

Interrupt::Interrupt() {
  interrupts = served = 0;
  if (pipe2(ends, O_CLOEXEC) != 0) {
    return;  // an interrupt ends the program, then
  }
  // Signals belong to the thread that does the work.
  sigset_t all;
  sigset_t former;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &former);
  killer = std::thread(serve);
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
  struct sigaction action = {};
  action.sa_handler = passOn;  // without SA_RESTART: who reads from a command is woken
  sigaction(SIGINT, &action, &before);
}

Interrupt::~Interrupt() {
  if (!killer.joinable()) {
    return;
  }
  sigaction(SIGINT, &before, nullptr);
  [[maybe_unused]] const ssize_t written = write(ends[1], "", 1);
  killer.join();
  close(ends[0]);
  close(ends[1]);
}

int Interrupt::count() {
  return interrupts;
}

void Interrupt::settle() {
  for (int seen = served; seen < interrupts; seen = served) {
    served.wait(seen);
  }
}

}  // namespace tarn
