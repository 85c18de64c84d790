#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/admin.h"
#include "platform/host/services/mirel_host_descriptor.h"

namespace {

constexpr const char* PRODUCT = "kato";
constexpr unsigned long kPathSize = 256;  // of the callers' buffers for database paths
constexpr unsigned int kOpenRead = 52;

/// Copies a text that fits with its terminator; otherwise the buffer holds the empty text.
int deliver(std::string_view text, char* buffer, unsigned long size) {
  if (size == 0) {
    return ERANGE;
  }
  const bool fits = text.size() < size;
  buffer[fits ? text.copy(buffer, text.size()) : 0] = '\0';
  return fits ? 0 : ERANGE;
}

bool isProgram(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

/// The directory as an absolute path without "." and ".."; links are kept, because an instance may reach
/// the installed code through them. An empty element of PATH is the current directory.
std::filesystem::path absolute(std::string_view directory) {
  std::error_code error;
  std::filesystem::path path = (std::filesystem::current_path(error) / directory).lexically_normal();
  return path.has_filename() ? path : path.parent_path();  // without a slash at the end
}

/// Empty when there is none.
std::string installPath() {
  const char* variable = std::getenv("PATH");
  if (variable == nullptr) {
    return "";
  }
  std::string_view rest = variable;
  while (true) {
    const std::size_t colon = rest.find(':');
    const std::filesystem::path directory = absolute(rest.substr(0, colon));
    if (directory.is_absolute() && directory.filename() == "bin" && isProgram(directory / PRODUCT)) {
      return directory.parent_path();
    }
    if (colon == std::string_view::npos) {
      return "";
    }
    rest.remove_prefix(colon + 1);
  }
}

std::string accountName(uid_t user) {
  const passwd* account = getpwuid(user);
  return account != nullptr ? account->pw_name : std::to_string(user);
}

bool isDatabaseName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

sqlz_krcb controlBlock = {0};  // one member, number 0

}  // namespace

sqlz_krcb* sqlz_krcbp = &controlBlock;

int sqloInstallPath(unsigned long size, char* buffer) {
  const std::string path = installPath();
  const int code = deliver(path, buffer, size);
  return path.empty() ? ENOENT : code;
}

// An owner without an account (a container run under any number) goes by the number.
int sqloGetInstanceOwnerName(char* buffer, unsigned long size) {
  const std::string path = installPath();
  struct stat status;
  const bool installed = !path.empty() && stat(path.c_str(), &status) == 0;
  const std::string name = accountName(installed ? status.st_uid : geteuid());
  return size == 0 ? ERANGE : deliver(std::string_view(name).substr(0, size - 1), buffer, size);
}

int sqlfGetGDBPath(const char* database, char* buffer, int) {
  const std::string path = installPath();
  const bool known = !path.empty() && isDatabaseName(database);
  const int code = deliver(known ? path + "/databases/" + database + "/" : "", buffer, kPathSize);
  return known ? code : ENOENT;
}

int sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member) {
  const std::string path = globalPath;
  const bool known = !path.empty() && member >= 0;
  char share[16];
  std::snprintf(share, sizeof share, "member%04d/", member);
  const int code = deliver(known ? path + (path.ends_with('/') ? "" : "/") + share : "", buffer, kPathSize);
  return known ? code : EINVAL;
}

int sqloopenp(const char* path, unsigned int flags, unsigned int, int* handle, unsigned int, unsigned int) {
  *handle = -1;
  return flags == kOpenRead ? static_cast<int>(host::openForReading(path, handle)) : EINVAL;
}

int sqloread(int handle, unsigned long count, void* buffer, unsigned long* received) {
  return static_cast<int>(host::readFully(handle, buffer, count, received));
}

int sqloclose(int handle) {
  return static_cast<int>(host::closeDescriptor(handle));
}
