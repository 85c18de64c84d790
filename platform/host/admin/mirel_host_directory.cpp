// The database directory: the data sources that the ODBC driver manager knows. There is no other directory,
// so a scan of one by its path fails.

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "platform/admin.h"
#include "platform/host/sqlcli/mirel_host_odbc.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"
#include "platform/sqlcli.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kNoMore = 100;
constexpr int kFailure = -1;

/// The directory counts its entries in 16 bits.
constexpr std::size_t kMostEntries = 0xFFFF;

struct Scan {
  std::vector<std::string> names;
  std::size_t position = 0;
  katoDbDirInfoV9 entry{};
};

using Scans = std::map<unsigned short, Scan>;

/// The open scans by their handles.
Scans& scans() {
  static Scans open;
  return open;
}

/// Fills in the status area, where there is one, and answers the code of the call.
int finish(int code, sqlca* status) {
  if (status != nullptr) {
    *status = {{'S', 'Q', 'L', 'C', 'A', ' ', ' ', ' '}, sizeof(sqlca), code, {}};
  }
  return code;
}

std::string foldCase(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return name;
}

/// Lists the user's data sources and then the system's, a name in both of them once. False on failure.
bool listDataSources(std::vector<std::string>* names) {
  std::array<char, 256> text{};
  if (!host::openOdbc(text.data(), text.size())) {
    return false;
  }
  const auto free = [](void* handle) { host::odbc().freeHandle(SQL_HANDLE_ENV, handle); };
  const std::unique_ptr<void, decltype(free)> environment(host::allocateOdbcEnvironment(), free);
  if (environment == nullptr) {
    return false;
  }
  std::set<std::string> seen;
  unsigned short direction = host::kOdbcFetchFirst;
  for (std::size_t asked = 0; asked < kMostEntries; ++asked) {
    text.fill('\0');
    short length = 0;
    const short code =
        host::odbc().dataSources(environment.get(), direction, host::odbcText(text.data()),
                                 static_cast<short>(text.size()), &length, nullptr, 0, nullptr);
    if (code != SQL_SUCCESS && code != SQL_SUCCESS_WITH_INFO) {
      return code == SQL_NO_DATA;
    }
    text.back() = '\0';
    if (seen.insert(foldCase(text.data())).second) {
      names->emplace_back(text.data());
    }
    direction = host::kOdbcFetchNext;
  }
  return true;
}

/// A handle for one more scan: the next number that none has. 0 when there is no such number.
unsigned short newHandle() {
  static unsigned short last = 0;
  for (std::size_t tried = 0; tried <= kMostEntries; ++tried) {
    if (++last != 0 && scans().count(last) == 0) {
      return last;
    }
  }
  return 0;
}

}  // namespace

int katoDbDirOpenScan(unsigned int, katoDbDirOpenScanStruct* request, sqlca* status) {
  request->handle = 0;
  request->dbEntries = 0;
  try {
    Scan scan;
    const bool listed = request->path == nullptr && listDataSources(&scan.names);
    const unsigned short handle = listed ? newHandle() : 0;
    if (handle == 0) {
      return finish(kFailure, status);
    }
    const auto entries = static_cast<unsigned short>(scan.names.size());
    scans().emplace(handle, std::move(scan));
    request->handle = handle;
    request->dbEntries = entries;
    return finish(kSuccess, status);
  } catch (const std::bad_alloc&) {
    return finish(kFailure, status);
  }
}

int katoDbDirGetNextEntry(unsigned int, katoDbDirNextEntryStruct* request, sqlca* status) {
  request->entry = nullptr;
  const auto found = scans().find(request->handle);
  if (found == scans().end()) {
    return finish(kFailure, status);
  }
  Scan& scan = found->second;
  if (scan.position == scan.names.size()) {
    return finish(kNoMore, status);
  }
  const std::string& name = scan.names[scan.position++];
  scan.entry = {};
  host::copyCut(name, scan.entry.alias, sizeof scan.entry.alias);
  request->entry = &scan.entry;
  return finish(kSuccess, status);
}

int katoDbDirCloseScan(unsigned int, katoDbDirCloseScanStruct* request, sqlca* status) {
  return finish(scans().erase(request->handle) == 1 ? kSuccess : kFailure, status);
}
