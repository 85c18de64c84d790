#include "collectors/mirel_collectors_platform.h"

#include "collectors/mirel_collectors_system.h"
#include "common/mirel_common_memory.h"
#include "platform/services.h"

namespace {

mirel_string textOf(const OSSSysInfoStr& value) {
  return value.status == 0 ? mirel_string(value.value, sizeof value.value) : "null";
}

template <class Number>
mirel_string numberOf(const Number& value) {
  return value.status == 0 ? mirel_string(value.value) : "null";
}

constexpr Item<OSSOSInfo> kOsItems[] = {
    {"name", [](const OSSOSInfo& os) { return textOf(os.name); }},
    {"system", [](const OSSOSInfo& os) { return textOf(os.system); }},
    {"version", [](const OSSOSInfo& os) { return textOf(os.osVersion); }},
    {"release", [](const OSSOSInfo& os) { return textOf(os.release); }},
    {"machine", [](const OSSOSInfo& os) { return textOf(os.machine); }},
    {"fullname", [](const OSSOSInfo& os) { return mirel_string(os.fullName, sizeof os.fullName); }},
};

constexpr Item<OSSCPUInfo> kCpuItems[] = {
    {"total", [](const OSSCPUInfo& cpu) { return numberOf(cpu.total); }},
    {"online", [](const OSSCPUInfo& cpu) { return numberOf(cpu.online); }},
    {"configured", [](const OSSCPUInfo& cpu) { return numberOf(cpu.configured); }},
    {"speed", [](const OSSCPUInfo& cpu) { return numberOf(cpu.speed); }},
    {"threading", [](const OSSCPUInfo& cpu) { return numberOf(cpu.threadingDegree); }},
    {"cores", [](const OSSCPUInfo& cpu) { return numberOf(cpu.coresPerSocket); }},
};

constexpr Item<OSSPhysMemInfo> kMemoryItems[] = {
    {"total", [](const OSSPhysMemInfo& memory) { return numberOf(memory.total); }},
    {"free", [](const OSSPhysMemInfo& memory) { return numberOf(memory.free); }},
    {"available", [](const OSSPhysMemInfo& memory) { return numberOf(memory.available); }},
};

constexpr Item<OSSVirtualMemInfo> kVirtualMemoryItems[] = {
    {"total", [](const OSSVirtualMemInfo& memory) { return numberOf(memory.total); }},
    {"free", [](const OSSVirtualMemInfo& memory) { return numberOf(memory.free); }},
    {"available", [](const OSSVirtualMemInfo& memory) { return numberOf(memory.available); }},
    {"reserved", [](const OSSVirtualMemInfo& memory) { return numberOf(memory.reserved); }},
};

constexpr Item<OSSPhysSwapInfo> kSwapItems[] = {
    {"total", [](const OSSPhysSwapInfo& swap) { return numberOf(swap.total); }},
    {"free", [](const OSSPhysSwapInfo& swap) { return numberOf(swap.free); }},
};

constexpr Item<OSSDiskInfo> kDiskItems[] = {
    {"total", [](const OSSDiskInfo& disk) { return numberOf(disk.total); }},
    {"free", [](const OSSDiskInfo& disk) { return numberOf(disk.free); }},
};

/// The answer to `item` out of a group; `otherwise` when the group's query failed or has no such item.
template <class Group, class Record, unsigned long count>
mirel_string answer(const Group& group, const Item<Record> (&items)[count], const mirel_string& item,
                    const char* otherwise) {
  if (group.code != 0 && group.code != OSS_SYSINFO_PARTIAL) {
    return otherwise;
  }
  return answerOf(items, group.record, item, otherwise);
}

}  // namespace

PlatformCollector::PlatformCollector() {
  m_os.record.version = m_cpu.record.version = m_memory.record.version = m_virtualMemory.record.version =
      m_disk.record.version = m_swap.record.version = OSS_VERSION_STAMP;
  m_cpu.record.reserved4 = 2044;
  m_cpu.record.reserved5 = 1000;
}

void PlatformCollector::collect() {
  ossSysInfoOneTimeOnly();
  // What there is no memory for stays unknown, and costs no other group.
  MemoryWatch::during([this] { m_os.code = ossGetOSInfo(&m_os.record); });
  MemoryWatch::during([this] { m_cpu.code = ossGetCPUInfo(&m_cpu.record); });
  MemoryWatch::during([this] { m_memory.code = ossGetPhysMemInfo(&m_memory.record); });
  MemoryWatch::during([this] { m_virtualMemory.code = ossGetVirtualMemInfo(&m_virtualMemory.record); });
  MemoryWatch::during([this] { m_swap.code = ossGetPhysSwapInfo(&m_swap.record); });
  const OSSDiskInfoParam root = {OSS_VERSION_STAMP, "/", 1, -1};
  m_disk.code = ossGetDiskInfo(&root, &m_disk.record);
}

mirel_string PlatformCollector::collect_os(const mirel_string& item) const {
  return answer(m_os, kOsItems, item, "null");
}

mirel_string PlatformCollector::collect_cpu(const mirel_string& item) const {
  return answer(m_cpu, kCpuItems, item, "null");
}

mirel_string PlatformCollector::collect_pmemory(const mirel_string& item) const {
  return answer(m_memory, kMemoryItems, item, "null");
}

mirel_string PlatformCollector::collect_vmemory(const mirel_string& item) const {
  return answer(m_virtualMemory, kVirtualMemoryItems, item, "null");
}

mirel_string PlatformCollector::collect_swap(const mirel_string& item) const {
  return answer(m_swap, kSwapItems, item, "null");
}

mirel_string PlatformCollector::collect_disk(const mirel_string& item) const {
  return answer(m_disk, kDiskItems, item, "");
}

ItemWords PlatformCollector::osItems() {
  return wordsOf(kOsItems);
}

ItemWords PlatformCollector::cpuItems() {
  return wordsOf(kCpuItems);
}

ItemWords PlatformCollector::pmemoryItems() {
  return wordsOf(kMemoryItems);
}

ItemWords PlatformCollector::vmemoryItems() {
  return wordsOf(kVirtualMemoryItems);
}

ItemWords PlatformCollector::swapItems() {
  return wordsOf(kSwapItems);
}

ItemWords PlatformCollector::diskItems() {
  return wordsOf(kDiskItems);
}

mirel_string PlatformCollector::collect_network(const mirel_string&) const {
  return executeGet("ifconfig -a");
}
