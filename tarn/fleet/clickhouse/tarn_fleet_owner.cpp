#include "tarn/fleet/clickhouse/tarn_fleet_owner.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>

namespace tarn {

namespace {

std::string contentOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Where process numbers mean the same: since the machine was started, in one namespace.
std::string worldOf() {
  char link[64] = "";
  const ssize_t size = readlink("/proc/self/ns/pid", link, sizeof link);
  std::string world = contentOf("/proc/sys/kernel/random/boot_id") + ":" +
                      std::string(link, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  std::erase_if(world, [](char letter) { return isalnum(letter) == 0 && letter != '-' && letter != ':'; });
  std::ranges::replace(world, ':', '-');
  return world;
}

/// When the process began (proc(5), stat, field 22), empty when there is none. Its second field is a name
/// that may hold anything.
std::string beginOf(std::string_view process) {
  const std::string stat = contentOf(fmt::format("/proc/{}/stat", process));
  std::string_view rest = std::string_view(stat).substr(std::min(stat.rfind(')'), stat.size()));
  for (int field = 2; field < 22 && !rest.empty(); ++field) {
    rest.remove_prefix(std::min(rest.find(' ', 1), rest.size()));
  }
  rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
  return std::string(rest.substr(0, rest.find(' ')));
}

}  // namespace

std::string thisProcess() {
  const std::string process = std::to_string(getpid());
  return fmt::format("{}:{}:{}", worldOf(), process, beginOf(process));
}

bool hasEnded(std::string_view process) {
  const std::string world = worldOf() + ":";
  if (!process.starts_with(world)) {
    return false;
  }
  process.remove_prefix(world.size());
  const std::size_t colon = process.find(':');
  return colon != std::string_view::npos && beginOf(process.substr(0, colon)) != process.substr(colon + 1);
}

}  // namespace tarn
