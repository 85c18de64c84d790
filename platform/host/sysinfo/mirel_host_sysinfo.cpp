#include "platform/host/sysinfo/mirel_host_sysinfo.h"

#include "platform/host/sysinfo/mirel_host_answer.h"
#include "platform/host/sysinfo/mirel_host_processors.h"
#include "platform/host/sysinfo/mirel_host_sysinfo_text.h"

namespace host {

namespace {

std::optional<std::string> fullName(const Machine& machine) {
  const auto release =
      firstKnown({readText(machine, "/etc/os-release"), readText(machine, "/usr/lib/os-release")});
  std::optional<std::string> name = prettyName(release.value_or(""));
  if (name || !machine.names) {
    return name;
  }
  return std::string(machine.names->sysname) + " " + machine.names->release;
}

struct Space {
  std::optional<long> total;
  std::optional<long> free;
};

std::string readMeminfo(const Machine& machine) {
  return readText(machine, "/proc/meminfo").value_or("");
}

Space memoryOf(const Machine& machine, std::string_view meminfo) {
  Space behind;
  if (const auto& memory = machine.memory) {
    behind = {bytes(memory->totalram, memory->mem_unit), bytes(memory->freeram, memory->mem_unit)};
  }
  return {firstKnown({memoryField(meminfo, "MemTotal"), behind.total}),
          firstKnown({memoryField(meminfo, "MemFree"), behind.free})};
}

Space swapOf(const Machine& machine, std::string_view meminfo) {
  Space behind;
  if (const auto areas = parseSwaps(readText(machine, "/proc/swaps").value_or(""))) {
    behind = {areas->total, areas->free};
  } else if (const auto& memory = machine.memory) {
    behind = {bytes(memory->totalswap, memory->mem_unit), bytes(memory->freeswap, memory->mem_unit)};
  }
  return {firstKnown({memoryField(meminfo, "SwapTotal"), behind.total}),
          firstKnown({memoryField(meminfo, "SwapFree"), behind.free})};
}

}  // namespace

unsigned int osInfo(const Machine& machine, OSSOSInfo* info) {
  Answer answer;
  const auto set = [&](OSSSysInfoStr& record, auto name) {
    answer.set(record,
               machine.names ? std::optional<std::string_view>((*machine.names).*name) : std::nullopt);
  };
  set(info->name, &utsname::sysname);
  set(info->system, &utsname::nodename);
  set(info->osVersion, &utsname::version);
  set(info->release, &utsname::release);
  set(info->machine, &utsname::machine);
  answer.set(info->fullName, fullName(machine));
  return answer.code();
}

unsigned int physMemInfo(const Machine& machine, OSSPhysMemInfo* info) {
  const std::string meminfo = readMeminfo(machine);
  const Space memory = memoryOf(machine, meminfo);
  Answer answer;
  answer.set(info->total, memory.total);
  answer.set(info->free, memory.free);
  answer.set(info->available, memoryField(meminfo, "MemAvailable"));
  return answer.code();
}

unsigned int virtualMemInfo(const Machine& machine, OSSVirtualMemInfo* info) {
  const std::string meminfo = readMeminfo(machine);
  const Space memory = memoryOf(machine, meminfo);
  const Space swap = swapOf(machine, meminfo);
  Answer answer;
  answer.set(info->total, plus(memory.total, swap.total));
  answer.set(info->reserved, memoryField(meminfo, "Committed_AS"));
  answer.set(info->available, plus(memoryField(meminfo, "MemAvailable"), swap.free));
  answer.set(info->free, plus(memory.free, swap.free));
  return answer.code();
}

unsigned int physSwapInfo(const Machine& machine, OSSPhysSwapInfo* info) {
  const Space swap = swapOf(machine, readMeminfo(machine));
  Answer answer;
  answer.set(info->total, swap.total);
  answer.set(info->free, swap.free);
  return answer.code();
}

unsigned int diskInfo(const struct statvfs& fileSystem, OSSDiskInfo* info) {
  const bool told = fileSystem.f_blocks != 0;
  Answer answer;
  answer.set(info->total, told ? bytes(fileSystem.f_blocks, fileSystem.f_frsize) : std::nullopt);
  answer.set(info->free, told ? bytes(fileSystem.f_bavail, fileSystem.f_frsize) : std::nullopt);
  return answer.code();
}

}  // namespace host

unsigned int ossSysInfoOneTimeOnly() {
  return 0;
}

unsigned int ossGetOSInfo(OSSOSInfo* info) {
  return host::osInfo(host::thisMachine(), info);
}

unsigned int ossGetCPUInfo(OSSCPUInfo* info) {
  return host::cpuInfo(host::thisMachine(), info);
}

unsigned int ossGetPhysMemInfo(OSSPhysMemInfo* info) {
  return host::physMemInfo(host::thisMachine(), info);
}

unsigned int ossGetVirtualMemInfo(OSSVirtualMemInfo* info) {
  return host::virtualMemInfo(host::thisMachine(), info);
}

unsigned int ossGetPhysSwapInfo(OSSPhysSwapInfo* info) {
  return host::physSwapInfo(host::thisMachine(), info);
}

unsigned int ossGetDiskInfo(const OSSDiskInfoParam* parameters, OSSDiskInfo* info) {
  struct statvfs fileSystem;
  if (statvfs(parameters->path, &fileSystem) != 0) {
    return OSS_SYSINFO_UNAVAILABLE;
  }
  return host::diskInfo(fileSystem, info);
}
