#pragma once
/// The queries of platform/sysinfo.h with the machine as a parameter; the one about processors is in
/// mirel_host_processors.h.
///
/// They set every value that the core reads. The others (domain, reserved memory, block size, mount point
/// and the reserved fields) stay as they came and do not make an answer partial.

#include <sys/statvfs.h>

#include "platform/host/sysinfo/mirel_host_machine.h"
#include "platform/sysinfo.h"

namespace host {

/// Names by uname(2). The full name is PRETTY_NAME of /etc/os-release, or where that file is missing of
/// /usr/lib/os-release, else system name and release.
unsigned int osInfo(const Machine& machine, OSSOSInfo* info);

/// /proc/meminfo, behind it sysinfo(2). "Available" is told by Linux 3.14 and later.
unsigned int physMemInfo(const Machine& machine, OSSPhysMemInfo* info);

/// Total = memory + swap, free = free memory + free swap, available = available memory + free swap,
/// reserved = Committed_AS.
unsigned int virtualMemInfo(const Machine& machine, OSSVirtualMemInfo* info);

/// /proc/meminfo, behind it /proc/swaps and sysinfo(2). A machine without swap tells 0.
unsigned int physSwapInfo(const Machine& machine, OSSPhysSwapInfo* info);

/// A file system by what statvfs(3) answered. Free is what can still be used without privileges, the
/// "available" of df(1). A file system that reports no blocks does not tell its size.
unsigned int diskInfo(const struct statvfs& fileSystem, OSSDiskInfo* info);

}  // namespace host
