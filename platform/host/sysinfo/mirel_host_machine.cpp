#include "platform/host/sysinfo/mirel_host_machine.h"

#include <array>

#include "platform/host/services/mirel_host_descriptor.h"

namespace host {

namespace {

/// /proc/cpuinfo, the largest of them, has about 2 KB for each of some thousand processors.
constexpr unsigned long kMaxText = 64UL << 20;

}  // namespace

Machine thisMachine() {
  Machine machine = {"/", std::nullopt, std::nullopt};
  if (utsname names; uname(&names) == 0) {
    machine.names = names;
  }
  if (struct sysinfo memory; sysinfo(&memory) == 0) {
    machine.memory = memory;
  }
  return machine;
}

std::optional<std::string> readText(const Machine& machine, const std::string& path) {
  int file = -1;
  if (openForReading((machine.root + path).c_str(), &file) != 0) {
    return std::nullopt;
  }
  std::string text;
  std::array<char, 16384> block;
  unsigned long received = 0;
  unsigned int code = 0;
  do {
    code = readFully(file, block.data(), block.size(), &received);
    text.append(block.data(), received);
  } while (code == 0 && received == block.size() && text.size() <= kMaxText);
  closeDescriptor(file);
  return code == 0 && text.size() <= kMaxText ? std::optional(text) : std::nullopt;
}

}  // namespace host
