#pragma once

#include <fstream>
#include <string>

/// The peak of this process's memory in bytes (VmHWM, proc(5)); getrusage(2) counts its parent in.
inline unsigned long peak() {
  std::ifstream status("/proc/self/status");
  unsigned long kilobytes = 0;
  for (std::string word; status >> word && word != "VmHWM:";) {
  }
  status >> kilobytes;
  return kilobytes * 1024;
}
