#include "collectors/mirel_collectors_system.h"

#include <cstdio>
#include <cstring>

#include "common/mirel_common_builder.h"
#include "common/mirel_common_memory.h"

namespace {

constexpr unsigned long kInstallPathSize = 1025;
constexpr unsigned long kDatabasePathSize = 256;
constexpr unsigned long kOwnerNameSize = 9;
constexpr int kPieceSize = 128;
/// Reads in a row that may fail before the output counts as ended.
constexpr int kFailuresAllowed = 1000;
constexpr unsigned int kOpenExisting = 52;

void appendOutput(mirel_string_builder& output, FILE* stream) {
  char piece[kPieceSize];
  for (int failures = 0; feof(stream) == 0 && failures < kFailuresAllowed; ++failures) {
    if (fgets(piece, kPieceSize, stream) == nullptr) {
      continue;
    }
    output.append(piece, strlen(piece));
    failures = -1;
  }
}

}  // namespace

mirel_string executeGet(const mirel_string& command) {
  if (command.lost()) {
    return "";
  }
  FILE* stream = popen(command.c_str(), "r");
  if (stream == nullptr) {
    return "ERROR";
  }
  mirel_string_builder output;
  appendOutput(output, stream);
  pclose(stream);
  return output.take();
}

mirel_string getInstallDirectory() {
  char path[kInstallPathSize] = {};
  return sqloInstallPath(kInstallPathSize, path) == 0 ? path : "";
}

mirel_string getInstName() {
  char name[kOwnerNameSize] = {};
  sqloGetInstanceOwnerName(name, kOwnerNameSize);
  return name;
}

mirel_string getGdbPath(const mirel_string& database) {
  char path[kDatabasePathSize] = {};
  return sqlfGetGDBPath(database.upper().c_str(), path, 1) == 0 ? path : "";
}

mirel_string getDbPath(const mirel_string& globalPath) {
  char path[kDatabasePathSize] = {};
  return sqlfGetMemberDBPathFromGDBPath(globalPath.c_str(), path, sqlz_krcbp->member) == 0 ? path : "";
}

long getDbCfd(const mirel_string& database, sqlf_dbcfd* configuration) {
  const MemoryWatch memory;
  const mirel_string file = getDbPath(getGdbPath(database)) + "SQLDBCONF";
  int handle = -1;
  if (!memory.ranOut() && sqloopenp(file.c_str(), kOpenExisting, 0640, &handle, 0, 1) == 0) {
    unsigned long received = 0;
    sqloread(handle, sizeof *configuration, configuration, &received);
  }
  return sqloclose(handle);
}
