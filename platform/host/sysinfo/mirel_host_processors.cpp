#include "platform/host/sysinfo/mirel_host_processors.h"

#include <dirent.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "platform/host/sysinfo/mirel_host_answer.h"
#include "platform/host/sysinfo/mirel_host_sysinfo_text.h"

namespace host {

namespace {

constexpr char kProcessors[] = "/sys/devices/system/cpu";

std::optional<long> processorNumber(std::string_view directory) {
  return directory.starts_with("cpu") ? parseNumber(directory.substr(3)) : std::nullopt;
}

/// The directories cpu0, cpu1, … below sysfs in the order of their numbers: the processors present.
std::vector<std::string> processorDirectories(const Machine& machine) {
  std::set<long> numbers;
  // Not std::filesystem: its iterator ends the process when memory runs out.
  const auto close = [](DIR* directory) { closedir(directory); };
  const std::unique_ptr<DIR, decltype(close)> listing(opendir((machine.root + kProcessors).c_str()), close);
  while (const dirent* entry = listing ? readdir(listing.get()) : nullptr) {
    if (const auto number = processorNumber(entry->d_name)) {
      numbers.insert(*number);
    }
  }
  std::vector<std::string> directories;
  directories.reserve(numbers.size());
  for (const long number : numbers) {
    directories.push_back(std::string(kProcessors) + "/cpu" + std::to_string(number));
  }
  return directories;
}

std::optional<long> readNumber(const Machine& machine, const std::string& path) {
  return parseNumber(readText(machine, path).value_or(""));
}

std::optional<ProcessorSet> readProcessors(const Machine& machine, const std::string& path) {
  return parseProcessors(readText(machine, path).value_or(""));
}

std::optional<long> countListed(const Machine& machine, const std::string& list) {
  const std::optional<ProcessorSet> set = readProcessors(machine, std::string(kProcessors) + "/" + list);
  return set ? std::optional(set->count) : std::nullopt;
}

struct Topology {
  std::optional<long> threading;
  std::optional<long> cores;
};

/// By sysfs. An offline processor has no topology there, so it counts neither as a thread nor as a core.
Topology topologyOf(const Machine& machine, const std::vector<std::string>& processors) {
  Topology topology;
  std::map<long, std::set<long>> packages;  // their cores, each known by its first thread
  for (const std::string& processor : processors) {
    const std::string directory = processor + "/topology/";
    const auto core = firstKnown({readProcessors(machine, directory + "core_cpus_list"),
                                  readProcessors(machine, directory + "thread_siblings_list")});
    if (!core) {
      continue;
    }
    topology.threading = std::max(topology.threading.value_or(0), core->count);
    // A kernel that does not know the package says -1, which is no number here.
    if (const auto package = readNumber(machine, directory + "physical_package_id")) {
      std::set<long>& cores = packages[*package];
      cores.insert(core->first);
      topology.cores = std::max(topology.cores.value_or(0), static_cast<long>(cores.size()));
    }
  }
  return topology;
}

/// By /proc/cpuinfo, where x86 tells it. On hybrid machines the division leaves a rest; rounding up gives
/// the threads of the larger cores.
Topology topologyOf(std::string_view cpuinfo) {
  const std::optional<long> threads = parseNumber(field(cpuinfo, "siblings").value_or(""));
  const std::optional<long> cores = parseNumber(field(cpuinfo, "cpu cores").value_or(""));
  if (!threads || !cores || *cores < 1 || *threads < *cores) {
    return {};
  }
  return {(*threads - 1) / *cores + 1, cores};
}

std::optional<long> topSpeed(const Machine& machine, const std::vector<std::string>& processors) {
  for (const std::string& processor : processors) {
    const long kilohertz = readNumber(machine, processor + "/cpufreq/cpuinfo_max_freq").value_or(0);
    if (const long megahertz = kilohertz / 1000 + (kilohertz % 1000 >= 500 ? 1 : 0); megahertz > 0) {
      return megahertz;
    }
  }
  return std::nullopt;
}

/// The key depends on the architecture: x86, ppc64, s390.
std::optional<long> currentSpeed(std::string_view cpuinfo) {
  for (const char* key : {"cpu MHz", "clock", "cpu MHz dynamic"}) {
    if (const auto speed = parseMegahertz(field(cpuinfo, key).value_or(""))) {
      return speed;
    }
  }
  return std::nullopt;
}

}  // namespace

unsigned int cpuInfo(const Machine& machine, OSSCPUInfo* info) {
  const std::vector<std::string> processors = processorDirectories(machine);
  const std::optional<long> directories =
      processors.empty() ? std::nullopt : std::optional(static_cast<long>(processors.size()));
  const Topology topology = topologyOf(machine, processors);
  const std::string cpuinfo = readText(machine, "/proc/cpuinfo").value_or("");
  const Topology behind = topologyOf(cpuinfo);

  Answer answer;
  answer.set(info->total, firstKnown({countListed(machine, "present"), directories}));
  answer.set(info->online, firstKnown({countListed(machine, "online"), countProcessors(cpuinfo)}));
  answer.set(info->configured, countListed(machine, "possible"));
  answer.set(info->speed, firstKnown({topSpeed(machine, processors), currentSpeed(cpuinfo)}));
  answer.set(info->threadingDegree, firstKnown({topology.threading, behind.threading}));
  answer.set(info->coresPerSocket, firstKnown({topology.cores, behind.cores}));
  return answer.code();
}

}  // namespace host
