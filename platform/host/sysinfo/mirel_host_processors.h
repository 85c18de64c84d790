#pragma once
/// The processors of a machine.

#include "platform/host/sysinfo/mirel_host_machine.h"
#include "platform/sysinfo.h"

namespace host {

/// Answers `ossGetCPUInfo` for a machine; sets every value up to `coresPerSocket`.
///
/// Counts: total = present, configured = possible, as sysfs lists them. Behind sysfs, /proc/cpuinfo tells
/// those online.
///
/// Topology: threading degree = the most hardware threads that any core has online (hybrid machines mix
/// cores with one and with two); cores per socket = the most cores that any package has online, a core
/// being a set of thread siblings, because core numbers repeat within the packages of some machines.
/// Behind sysfs, "siblings" and "cpu cores" of /proc/cpuinfo.
///
/// Speed: the highest frequency of the first processor that cpufreq knows; behind it, the current one of
/// the first processor in /proc/cpuinfo.
unsigned int cpuInfo(const Machine& machine, OSSCPUInfo* info);

}  // namespace host
