#pragma once

#include "collectors/mirel_collectors_items.h"
#include "common/mirel_string.h"
#include "platform/sysinfo.h"

/// The facts of the host, taken once per run and read out item by item.
///
/// `collect` asks the platform for all groups; every answer afterwards describes that one moment, the
/// network apart, which runs a command when it is asked. An item that the platform does not know answers
/// "null" (the disk group: the empty text). Units are the platform's; see platform/sysinfo.h.
class PlatformCollector {
 public:
  PlatformCollector();

  void collect();

  /// "name", "system", "version", "release", "machine", "fullname".
  mirel_string collect_os(const mirel_string& item) const;
  /// "total", "online", "configured", "speed", "threading", "cores".
  mirel_string collect_cpu(const mirel_string& item) const;
  /// "total", "free", "available".
  mirel_string collect_pmemory(const mirel_string& item) const;
  /// "total", "free", "available", "reserved".
  mirel_string collect_vmemory(const mirel_string& item) const;
  /// "total", "free".
  mirel_string collect_swap(const mirel_string& item) const;
  /// "total", "free" of the file system that holds the root directory.
  mirel_string collect_disk(const mirel_string& item) const;
  /// What "ifconfig -a" prints, whatever the item.
  mirel_string collect_network(const mirel_string& item) const;

  /// The items of each word.
  static ItemWords osItems();
  static ItemWords cpuItems();
  static ItemWords pmemoryItems();
  static ItemWords vmemoryItems();
  static ItemWords swapItems();
  static ItemWords diskItems();

 private:
  /// A record and the code of the query that filled it.
  template <class Record>
  struct Group {
    Record record;
    unsigned int code = 0;
  };

  Group<OSSOSInfo> m_os;
  Group<OSSCPUInfo> m_cpu;
  Group<OSSPhysMemInfo> m_memory;
  Group<OSSVirtualMemInfo> m_virtualMemory;
  Group<OSSDiskInfo> m_disk;
  Group<OSSPhysSwapInfo> m_swap;
};
