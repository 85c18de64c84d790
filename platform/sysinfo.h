#pragma once
/// System information: operating system, processors, memory, swap and disk of the host.
///
/// Units: bytes for memory, swap and disk; MHz for processor speed; counts for the rest.
/// Every value carries a status word: 0 when the value is known, anything else when it is not.
/// A query returns 0 when it answered, OSS_SYSINFO_PARTIAL when only some values are known,
/// any other code when it failed as a whole.

inline constexpr unsigned int OSS_SYSINFO_PARTIAL = 0x10000006;
inline constexpr unsigned int OSS_SYSINFO_UNAVAILABLE = 1;

struct OSSSysInfoStr {
  char value[256] = {};  ///< NUL-terminated
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSSysInfoSint {
  long value = 0;
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSSysInfoUint {
  unsigned long value = 0;
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSSysInfoSint64 {
  long value = 0;
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSSysInfoUint64 {
  unsigned long value = 0;
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSSysInfoMountPoint {
  char path[256] = {};
  unsigned int status = OSS_SYSINFO_UNAVAILABLE;
};

struct OSSOSInfo {
  unsigned long version = 0;  ///< version stamp
  OSSSysInfoStr name;         ///< kernel name, such as "Linux"
  OSSSysInfoStr system;       ///< the machine's node name
  OSSSysInfoStr osVersion;    ///< version of the kernel build
  OSSSysInfoStr release;      ///< release of the kernel
  OSSSysInfoStr machine;      ///< hardware name, such as "x86_64"
  OSSSysInfoStr domain;
  unsigned long flags = 0;
  char fullName[512] = {};  ///< name of the distribution; always set when the query answers
};

struct OSSCPUInfo {
  unsigned long version = 0;
  OSSSysInfoSint total;  ///< processors present
  OSSSysInfoSint online;
  OSSSysInfoSint configured;       ///< processors the kernel could ever bring online
  OSSSysInfoSint speed;            ///< MHz
  OSSSysInfoSint threadingDegree;  ///< hardware threads a core
  OSSSysInfoUint coresPerSocket;
  OSSSysInfoSint reserved1;
  unsigned long reserved2 = 0;
  OSSSysInfoUint reserved3;
  unsigned long reserved4 = 0;  ///< 2044 when the query is made
  unsigned int reserved5 = 0;   ///< 1000 when the query is made
  OSSSysInfoUint reserved6;
  OSSSysInfoUint64 reserved7;
  OSSSysInfoUint64 reserved8;
  unsigned char reserved9[3] = {};
};

struct OSSPhysMemInfo {
  unsigned long version = 0;
  OSSSysInfoSint total;
  OSSSysInfoSint free;
  OSSSysInfoSint available;  ///< what new programs could get without swapping
  OSSSysInfoSint reserved;
};

/// The order differs from `OSSPhysMemInfo`.
struct OSSVirtualMemInfo {
  unsigned long version = 0;
  OSSSysInfoSint total;     ///< memory and swap
  OSSSysInfoSint reserved;  ///< promised to programs
  OSSSysInfoSint available;
  OSSSysInfoSint free;
};

struct OSSPhysSwapInfo {
  unsigned long version = 0;
  OSSSysInfoSint total;
  OSSSysInfoSint free;
};

struct OSSDiskInfoParam {
  unsigned long version;
  const char* path;  ///< any path of the file system asked about
  unsigned long options;
  int filter;
};

struct OSSDiskInfo {
  unsigned long version = 0;
  OSSSysInfoSint blockSize;
  OSSSysInfoSint64 total;
  OSSSysInfoSint64 free;  ///< what can still be used without privileges
  OSSSysInfoSint reserved1;
  OSSSysInfoStr reserved2;
  OSSSysInfoStr reserved3;
  OSSSysInfoUint reserved4;
  OSSSysInfoStr reserved5;
  OSSSysInfoUint reserved6;
  OSSSysInfoSint reserved7;
  OSSSysInfoSint64 reserved8;
  OSSSysInfoMountPoint mountPoint;
};

extern "C" {

/// Sets the service up; once, before the first query.
unsigned int ossSysInfoOneTimeOnly();

unsigned int ossGetOSInfo(OSSOSInfo* info);
unsigned int ossGetCPUInfo(OSSCPUInfo* info);
unsigned int ossGetPhysMemInfo(OSSPhysMemInfo* info);
unsigned int ossGetVirtualMemInfo(OSSVirtualMemInfo* info);
unsigned int ossGetPhysSwapInfo(OSSPhysSwapInfo* info);
unsigned int ossGetDiskInfo(const OSSDiskInfoParam* parameters, OSSDiskInfo* info);

}  // extern "C"
