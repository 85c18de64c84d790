#pragma once
/// Where the facts about a machine come from: this one, or one whose /proc, /sys and /etc were captured.

#include <sys/sysinfo.h>
#include <sys/utsname.h>

#include <optional>
#include <string>

namespace host {

struct Machine {
  std::string root;                      ///< the directory that holds its /proc, /sys and /etc
  std::optional<utsname> names;          ///< what uname(2) answered
  std::optional<struct sysinfo> memory;  ///< what sysinfo(2) answered; used for what /proc does not tell
};

/// The machine that the process runs on, as it is at the moment.
Machine thisMachine();

/// The content of one of the machine's files by its absolute path; nothing when it cannot be read, or is
/// longer than any text of the kernel's.
std::optional<std::string> readText(const Machine& machine, const std::string& path);

}  // namespace host
