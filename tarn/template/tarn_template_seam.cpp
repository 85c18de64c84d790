// `__wrap_X` is what the core calls for X, `__real_X` is X itself: names of the linker's (--wrap).

#include "tarn/template/tarn_template_seam.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/admin.h"
#include "platform/services.h"
#include "platform/sqlcli.h"
#include "platform/sysinfo.h"

namespace tarn {

namespace {

constexpr std::size_t kErrorShown = 64 << 10;
constexpr std::size_t kRestShown = 4096;

Witness* current = nullptr;

bool pretends() {
  return current != nullptr && current->pretends();
}

/// The machine's answer, or what is said in its place.
template <class Answer, class... Parameters, class... Arguments>
Answer ask(Answer pretended, Answer (*real)(Parameters...), Arguments... arguments) {
  return pretends() ? pretended : real(arguments...);
}

/// Catches the standard error of a command that is started meanwhile.
class ErrorCatcher {
 public:
  int start() {
    m_caught = memfd_create("standard error", MFD_CLOEXEC);
    m_before = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    return m_caught == -1 || m_before == -1 ? -1 : dup2(m_caught, STDERR_FILENO);
  }
  /// The command has its own copy now.
  void giveBack() const {
    dup2(m_before, STDERR_FILENO);
    close(m_before);
  }
  std::string take() {
    struct stat about = {};
    fstat(m_caught, &about);
    std::string text(std::min(kErrorShown, static_cast<std::size_t>(about.st_size)), '\0');
    const ssize_t length = pread(m_caught, text.data(), text.size(), 0);
    text.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    close(m_caught);
    return text;
  }

 private:
  int m_caught = -1, m_before = -1;
};

ErrorCatcher standardError;

}  // namespace

Watch::Watch(Witness& witness) {
  current = &witness;
}

Watch::~Watch() {
  current = nullptr;
}

}  // namespace tarn

using namespace tarn;

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

FILE* __real_popen(const char* command, const char* mode);
char* __real_fgets(char* buffer, int size, FILE* stream);
int __real_feof(FILE* stream);
int __real_pclose(FILE* stream);

FILE* __wrap_popen(const char* command, const char* mode) {
  if (current == nullptr) {
    return __real_popen(command, mode);
  }
  current->starting(command);
  if (current->pretends() || standardError.start() == -1) {
    return nullptr;
  }
  FILE* const stream = __real_popen(command, mode);
  standardError.giveBack();
  if (stream == nullptr) {
    standardError.take();
  }
  return stream;
}

char* __wrap_fgets(char* buffer, int size, FILE* stream) {
  return current != nullptr && current->givesUp() ? nullptr : __real_fgets(buffer, size, stream);
}

int __wrap_feof(FILE* stream) {
  return current != nullptr && current->givesUp() ? 1 : __real_feof(stream);
}

int __wrap_pclose(FILE* stream) {
  const int status = __real_pclose(stream);
  if (current != nullptr) {
    current->ended(status, standardError.take());
  }
  return status;
}

SQLRETURN __real_SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output);
SQLRETURN __real_SQLFreeHandle(short type, SQLHANDLE handle);
SQLRETURN __real_SQLSetConnectAttr(SQLHANDLE connection, int attribute, void* value, int length);
SQLRETURN __real_SQLConnect(SQLHANDLE connection, const char* dataSource, short dataSourceLength,
                            const char* user, short userLength, const char* password, short passwordLength);
SQLRETURN __real_SQLDisconnect(SQLHANDLE connection);
SQLRETURN __real_SQLExecDirect(SQLHANDLE statement, const char* text, int length);
SQLRETURN __real_SQLNumResultCols(SQLHANDLE statement, short* count);
SQLRETURN __real_SQLDescribeCol(SQLHANDLE statement, unsigned short column, char* name, short nameSize,
                                short* nameLength, short* dataType, unsigned long* columnSize,
                                short* decimalDigits, short* nullable);
SQLRETURN __real_SQLFetch(SQLHANDLE statement);
SQLRETURN __real_SQLGetData(SQLHANDLE statement, unsigned short column, short targetType, void* target,
                            long targetSize, long* indicator);
SQLRETURN __real_SQLGetDiagRec(short type, SQLHANDLE handle, short record, char* state, int* nativeError,
                               char* message, short messageSize, short* messageLength);

SQLRETURN __wrap_SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output) {
  return ask(SQL_SUCCESS, __real_SQLAllocHandle, type, input, output);
}

SQLRETURN __wrap_SQLFreeHandle(short type, SQLHANDLE handle) {
  return ask(SQL_SUCCESS, __real_SQLFreeHandle, type, handle);
}

SQLRETURN __wrap_SQLSetConnectAttr(SQLHANDLE connection, int attribute, void* value, int length) {
  return ask(SQL_SUCCESS, __real_SQLSetConnectAttr, connection, attribute, value, length);
}

SQLRETURN __wrap_SQLConnect(SQLHANDLE connection, const char* dataSource, short dataSourceLength,
                            const char* user, short userLength, const char* password, short passwordLength) {
  if (current != nullptr) {
    current->connecting(dataSource);
  }
  const SQLRETURN code = ask(SQL_SUCCESS, __real_SQLConnect, connection, dataSource, dataSourceLength, user,
                             userLength, password, passwordLength);
  if (current != nullptr) {
    current->connected(sqlSucceeded(code));
  }
  return code;
}

SQLRETURN __wrap_SQLDisconnect(SQLHANDLE connection) {
  return ask(SQL_SUCCESS, __real_SQLDisconnect, connection);
}

SQLRETURN __wrap_SQLExecDirect(SQLHANDLE statement, const char* text, int length) {
  if (current != nullptr) {
    current->sending(text);
  }
  return ask(SQL_SUCCESS, __real_SQLExecDirect, statement, text, length);
}

/// Leaves the count at 0 where there is no machine.
SQLRETURN __wrap_SQLNumResultCols(SQLHANDLE statement, short* count) {
  return ask(SQL_SUCCESS, __real_SQLNumResultCols, statement, count);
}

SQLRETURN __wrap_SQLDescribeCol(SQLHANDLE statement, unsigned short column, char* name, short nameSize,
                                short* nameLength, short* dataType, unsigned long* columnSize,
                                short* decimalDigits, short* nullable) {
  const SQLRETURN code = __real_SQLDescribeCol(statement, column, name, nameSize, nameLength, dataType,
                                               columnSize, decimalDigits, nullable);
  if (current != nullptr) {
    current->column(name);
  }
  return code;
}

SQLRETURN __wrap_SQLFetch(SQLHANDLE statement) {
  if (current != nullptr && current->givesUp()) {
    return SQL_NO_DATA;
  }
  const SQLRETURN code = ask(SQL_NO_DATA, __real_SQLFetch, statement);
  if (current != nullptr && sqlSucceeded(code)) {
    current->row();
  }
  return code;
}

SQLRETURN __wrap_SQLGetData(SQLHANDLE statement, unsigned short column, short targetType, void* target,
                            long targetSize, long* indicator) {
  const SQLRETURN code = __real_SQLGetData(statement, column, targetType, target, targetSize, indicator);
  if (current == nullptr || !sqlSucceeded(code)) {
    return code;
  }
  const char* const text = static_cast<const char*>(target);
  const bool isNull = static_cast<int>(*indicator) == SQL_NULL_DATA;
  const bool isCut = code == SQL_SUCCESS_WITH_INFO && !isNull;
  if (current->value(column, {text, strnlen(text, static_cast<std::size_t>(targetSize))}, isNull, isCut)) {
    char rest[kRestShown] = {};
    long restLength = 0;
    const SQLRETURN more = __real_SQLGetData(statement, column, targetType, rest, sizeof rest, &restLength);
    current->rest({rest, sqlSucceeded(more) ? strnlen(rest, sizeof rest) : 0});
  }
  return code;
}

SQLRETURN __wrap_SQLGetDiagRec(short type, SQLHANDLE handle, short record, char* state, int* nativeError,
                               char* message, short messageSize, short* messageLength) {
  const SQLRETURN code =
      __real_SQLGetDiagRec(type, handle, record, state, nativeError, message, messageSize, messageLength);
  if (current != nullptr && sqlSucceeded(code)) {
    current->diagnostic(message);
  }
  return code;
}

unsigned int __real__ZN8OSSHFile4openEPK16OSSFileOpenParam(OSSHFile* file,
                                                           const OSSFileOpenParam* parameters);

/// OSSHFile::open.
unsigned int __wrap__ZN8OSSHFile4openEPK16OSSFileOpenParam(OSSHFile* file,
                                                           const OSSFileOpenParam* parameters) {
  if (current != nullptr) {
    current->reading(parameters->path);
  }
  const unsigned int code =
      ask(static_cast<unsigned int>(ENOENT), __real__ZN8OSSHFile4openEPK16OSSFileOpenParam, file, parameters);
  if (current != nullptr && code != 0) {
    current->unreadable(static_cast<int>(code));
  }
  return code;
}

int __real_sqloopenp(const char* path, unsigned int flags, unsigned int mode, int* handle,
                     unsigned int reserved, unsigned int options);
int __real_sqloclose(int handle);
int __real_sqloInstallPath(unsigned long size, char* buffer);
int __real_sqlfGetGDBPath(const char* database, char* buffer, int flags);
int __real_sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member);
int __real_sqleGetLevelInfo(unsigned int version, sqleLevelInfo* level);
int __real_katoDbDirOpenScan(unsigned int version, katoDbDirOpenScanStruct* request, sqlca* status);
int __real_katoDbDirCloseScan(unsigned int version, katoDbDirCloseScanStruct* request, sqlca* status);

int __wrap_sqloopenp(const char* path, unsigned int flags, unsigned int mode, int* handle,
                     unsigned int reserved, unsigned int options) {
  if (current != nullptr) {
    current->readingConfiguration();
  }
  return ask(ENOENT, __real_sqloopenp, path, flags, mode, handle, reserved, options);
}

int __wrap_sqloclose(int handle) {
  return ask(EBADF, __real_sqloclose, handle);
}

int __wrap_sqloInstallPath(unsigned long size, char* buffer) {
  return ask(ENOENT, __real_sqloInstallPath, size, buffer);
}

int __wrap_sqlfGetGDBPath(const char* database, char* buffer, int flags) {
  return ask(ENOENT, __real_sqlfGetGDBPath, database, buffer, flags);
}

int __wrap_sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member) {
  return ask(ENOENT, __real_sqlfGetMemberDBPathFromGDBPath, globalPath, buffer, member);
}

int __wrap_sqleGetLevelInfo(unsigned int version, sqleLevelInfo* level) {
  return ask(ENOENT, __real_sqleGetLevelInfo, version, level);
}

int __wrap_katoDbDirOpenScan(unsigned int version, katoDbDirOpenScanStruct* request, sqlca* status) {
  return ask(ENOENT, __real_katoDbDirOpenScan, version, request, status);
}

int __wrap_katoDbDirCloseScan(unsigned int version, katoDbDirCloseScanStruct* request, sqlca* status) {
  return ask(ENOENT, __real_katoDbDirCloseScan, version, request, status);
}

unsigned int __real_ossSysInfoOneTimeOnly();
unsigned int __real_ossGetOSInfo(OSSOSInfo* info);
unsigned int __real_ossGetCPUInfo(OSSCPUInfo* info);
unsigned int __real_ossGetPhysMemInfo(OSSPhysMemInfo* info);
unsigned int __real_ossGetVirtualMemInfo(OSSVirtualMemInfo* info);
unsigned int __real_ossGetPhysSwapInfo(OSSPhysSwapInfo* info);
unsigned int __real_ossGetDiskInfo(const OSSDiskInfoParam* parameters, OSSDiskInfo* info);

unsigned int __wrap_ossSysInfoOneTimeOnly() {
  return ask(0U, __real_ossSysInfoOneTimeOnly);
}

unsigned int __wrap_ossGetOSInfo(OSSOSInfo* info) {
  return ask(1U, __real_ossGetOSInfo, info);
}

unsigned int __wrap_ossGetCPUInfo(OSSCPUInfo* info) {
  return ask(1U, __real_ossGetCPUInfo, info);
}

unsigned int __wrap_ossGetPhysMemInfo(OSSPhysMemInfo* info) {
  return ask(1U, __real_ossGetPhysMemInfo, info);
}

unsigned int __wrap_ossGetVirtualMemInfo(OSSVirtualMemInfo* info) {
  return ask(1U, __real_ossGetVirtualMemInfo, info);
}

unsigned int __wrap_ossGetPhysSwapInfo(OSSPhysSwapInfo* info) {
  return ask(1U, __real_ossGetPhysSwapInfo, info);
}

unsigned int __wrap_ossGetDiskInfo(const OSSDiskInfoParam* parameters, OSSDiskInfo* info) {
  return ask(1U, __real_ossGetDiskInfo, parameters, info);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
