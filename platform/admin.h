#pragma once
/// Product administration: level information, database directory, paths, configuration files.
///
/// Functions return 0 on success. Records keep the fields and offsets that the core relies on.

#include <cstddef>

/// The installed level. All texts are NUL-terminated.
struct sqleLevelInfo {
  char reserved1[20];
  char version[32];
  char buildLevel[32];
  char fix[36];
  unsigned long fixPack;
  char reserved2[88];
  char codeRelease[104];
};
static_assert(offsetof(sqleLevelInfo, version) == 20);
static_assert(offsetof(sqleLevelInfo, buildLevel) == 52);
static_assert(offsetof(sqleLevelInfo, fix) == 84);
static_assert(offsetof(sqleLevelInfo, fixPack) == 120);
static_assert(offsetof(sqleLevelInfo, codeRelease) == 216);

/// SQL communication area: receives the status of a directory call.
struct sqlca {
  char eyecatcher[8];
  int length;
  int sqlcode;
  char reserved[120];
};

/// One entry of the database directory.
struct katoDbDirInfoV9 {
  char alias[256];  ///< padded with blanks or NUL-terminated
  char reserved[1024];
};

struct katoDbDirOpenScanStruct {
  const char* path;          ///< null: the local database directory
  unsigned short handle;     ///< out
  unsigned short dbEntries;  ///< out
};

struct katoDbDirNextEntryStruct {
  unsigned short handle;
  katoDbDirInfoV9* entry;  ///< out; belongs to the scan, valid until the next call
};

struct katoDbDirCloseScanStruct {
  unsigned short handle;
};

inline constexpr unsigned int KATO_DB_DIR_VERSION = 9000000;
inline constexpr unsigned int SQLE_LEVEL_VERSION = 0x0B010101;

/// Image of a database's configuration file.
struct sqlf_dbcfd {
  char reserved1[36];
  unsigned int seed;  ///< host byte order
  char reserved2[16344];
};
static_assert(offsetof(sqlf_dbcfd, seed) == 36);
static_assert(sizeof(sqlf_dbcfd) == 16384);

/// The process-wide control block.
struct sqlz_krcb {
  short member;  ///< number of the database member this process runs on
};

extern "C" {

int sqleGetLevelInfo(unsigned int version, sqleLevelInfo* level);

int katoDbDirOpenScan(unsigned int version, katoDbDirOpenScanStruct* request, sqlca* status);
/// Non-zero when there is no further entry.
int katoDbDirGetNextEntry(unsigned int version, katoDbDirNextEntryStruct* request, sqlca* status);
int katoDbDirCloseScan(unsigned int version, katoDbDirCloseScanStruct* request, sqlca* status);

/// The directory that the product is installed in, without a slash at its end.
int sqloInstallPath(unsigned long size, char* buffer);
/// The name of the account that owns the instance, cut to `size` bytes with its terminator.
int sqloGetInstanceOwnerName(char* buffer, unsigned long size);

/// The global path of a database, by its upper-case name. `buffer` takes 256 bytes; `flags` is 1.
int sqlfGetGDBPath(const char* database, char* buffer, int flags);
/// The path of one member's share below a global path, ending with a slash. `buffer` takes 256 bytes.
int sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member);

/// Opens a file; flags 52 mean an existing file for reading. `*handle` is -1 on failure.
int sqloopenp(const char* path, unsigned int flags, unsigned int mode, int* handle, unsigned int reserved,
              unsigned int options);
int sqloread(int handle, unsigned long count, void* buffer, unsigned long* received);
int sqloclose(int handle);

extern sqlz_krcb* sqlz_krcbp;

}  // extern "C"
