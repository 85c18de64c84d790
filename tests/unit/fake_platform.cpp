#include "tests/unit/fake_platform.h"

#include <algorithm>
#include <csetjmp>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "platform/progress.h"
#include "platform/sockets.h"

namespace {

using P = FakePlatform;

FakePlatform* s_current = nullptr;
std::jmp_buf* s_insteadOfExit = nullptr;

// --- How a call is written down.

const std::string& shown(const std::string& asItIs) {
  return asItIs;
}
std::string shown(const char* text) {
  return text == nullptr ? "null" : '"' + std::string(text) + '"';
}
std::string shown(std::integral auto number) {
  return std::to_string(number);
}

/// What a call returns, as whatever integer type it returns.
struct Code {
  long value;
  template <std::integral Number>
  operator Number() const {
    return static_cast<Number>(value);
  }
};

template <class... Arguments>
Code enter(P::Family family, const char* function, const Arguments&... arguments) {
  std::string line;
  ((line += (line.empty() ? "" : ", ") + shown(arguments)), ...);
  return {s_current->enter(family, function + ('(' + line + ')'))};
}

std::string stamp(unsigned long version) {
  return version == OSS_VERSION_STAMP ? "stamp" : std::to_string(version);
}

std::string tag(const char* file, unsigned int line) {
  return std::string(file) + ':' + std::to_string(line);
}

/// Copies a text into a buffer of the caller, cut to its size; whether it fitted.
bool deliver(const std::string& text, void* target, std::size_t size) {
  const std::size_t count = std::min(text.size(), size - 1);
  std::memcpy(target, text.data(), count);
  static_cast<char*>(target)[count] = '\0';
  return count == text.size();
}

}  // namespace

// --- The fake itself.

FakePlatform::FakePlatform() : m_previous(std::exchange(s_current, this)) {}

FakePlatform::~FakePlatform() {
  s_current = m_previous;
}

long FakePlatform::enter(Family family, const std::string& line) {
  m_calls.emplace_back(family, line);
  long code = 0;
  for (Fault& fault : m_faults)
    if (line.starts_with(fault.call) && (++fault.seen == fault.nth || fault.nth == 0))
      code = fault.code;
  return code;
}

std::string FakePlatform::calls(Family family) const {
  std::string lines;
  for (const auto& [group, line] : m_calls)
    if (family == group || (family == every && group != memory))
      lines += line + '\n';
  return lines;
}

long FakePlatform::count(const std::string& call) const {
  return std::count_if(m_calls.begin(), m_calls.end(),
                       [&](const auto& entry) { return entry.second.starts_with(call); });
}

std::string FakePlatform::open() const {
  std::string text;
  for (const auto& [what, number] : m_open)
    if (number != 0)
      text += (text.empty() ? "" : ", ") + what + ' ' + std::to_string(number);
  return text;
}

PlatformTest::PlatformTest()
    : m_realOutput(std::cout.rdbuf(&m_output)), m_realError(std::cerr.rdbuf(&m_error)) {}

PlatformTest::~PlatformTest() {
  std::cout.rdbuf(m_realOutput);
  std::cerr.rdbuf(m_realError);
  EXPECT_EQ("", standardOutput()) << "left unread";
  EXPECT_EQ("", standardError()) << "left unread";
  EXPECT_EQ(m_left, platform.open()) << "left open";
}

void PlatformTest::printOnRealError() const {
  std::cout.rdbuf(m_realError);
  std::cerr.rdbuf(m_realError);
}

int PlatformTest::exitStatusOf(const std::function<void()>& action) {
  std::jmp_buf here;
  s_insteadOfExit = &here;
  const int status = setjmp(here);
  if (status == 0)
    action();
  s_insteadOfExit = nullptr;
  return status - 1;
}

// --- Services.

unsigned int ossOneTimeOnly() {
  s_current->opened("service");
  return enter(P::service, "ossOneTimeOnly");
}

void ossTerminate() {
  s_current->opened("service", -1);
  enter(P::service, "ossTerminate");
}

// Knows the options by the long table alone, whose letters are the short ones.
int sqlogopt(int count, char* const* arguments, const char* shortOptions, SqloOptionState* state,
             const SqloLongOption* longOptions) {
  if (enter(P::service, "sqlogopt", shortOptions) || ++state->index >= count)
    return -1;
  const std::string typed = state->argument = arguments[state->index];
  for (; longOptions->name != nullptr; ++longOptions) {
    if (typed != std::string("-") + static_cast<char>(longOptions->letter) &&
        typed != std::string("--") + longOptions->name)
      continue;
    if (longOptions->takesArgument && state->index + 1 >= count)
      break;
    state->argument = longOptions->takesArgument ? arguments[++state->index] : nullptr;
    return longOptions->letter;
  }
  return '?';
}

int _ossMemAlloc(void** block, void* pool, unsigned long size, unsigned int flags, const char* file,
                 unsigned int line) {
  EXPECT_EQ(nullptr, pool);
  const Code code = enter(P::memory, "_ossMemAlloc", size, flags, tag(file, line));
  *block = code ? nullptr : std::malloc(size);
  if (!code)
    std::memset(*block, flags == 1 ? 0 : 0xA5, size);
  s_current->opened("block", code ? 0 : 1);
  return code;
}

int _ossMemFree(void** block, unsigned long reserved1, unsigned long reserved2, const char* file,
                unsigned int line) {
  std::free(std::exchange(*block, nullptr));
  s_current->opened("block", -1);
  return enter(P::memory, "_ossMemFree", reserved1, reserved2, tag(file, line));
}

int ossSnprintf(char* buffer, unsigned long size, const char* format, ...) {
  if (enter(P::service, "ossSnprintf", size, format))
    return -1;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, size, format, arguments);
  va_end(arguments);
  return length;
}

// --- Files.

namespace {

/// The handle, or -1 when there is no such file.
long openFile(const char* path) {
  if (!s_current->files.contains(path))
    return -1;
  s_current->openFiles.push_back(path);
  s_current->opened("file");
  return static_cast<long>(s_current->openFiles.size());
}

std::string& contentsOf(long handle) {
  return s_current->files[s_current->openFiles.at(static_cast<std::size_t>(handle - 1))];
}

/// Whether it was open. A handle is never used again.
bool closeFile(long handle) {
  const auto index = static_cast<std::size_t>(handle - 1);
  if (handle <= 0 || std::exchange(s_current->openFiles.at(index), "").empty())
    return false;
  s_current->opened("file", -1);
  return true;
}

}  // namespace

OSSHFile::OSSHFile() : m_handle(-1) {}
OSSHFile::~OSSHFile() {
  closeFile(m_handle);
}

unsigned int OSSHFile::open(const OSSFileOpenParam* p) {
  if (const Code code = enter(P::file, "open", stamp(p->version), p->path, p->options, p->access, p->sharing,
                              p->permissions, p->reserved))
    return code;
  if (p->options == 16)
    s_current->files[p->path] = "";
  m_handle = openFile(p->path);
  return m_handle == -1 ? 2 : 0;
}

unsigned int OSSHFile::write(const OSSFileWriteParam* p, unsigned long* written) {
  const std::string data(p->data, p->count);
  const Code code = enter(P::file, "write", stamp(p->version), data.c_str(), p->count, p->reserved);
  contentsOf(m_handle) += code ? "" : data;
  *written = code ? 0 : p->count;
  return code;
}

unsigned int OSSHFile::read(const OSSFileReadParam* p, void* buffer, unsigned long* received) {
  const Code code = enter(P::file, "read", stamp(p->version), p->count, p->reserved);
  *received = code ? 0 : contentsOf(m_handle).copy(static_cast<char*>(buffer), p->count);
  return code;
}

unsigned int OSSHFile::sync() {
  return enter(P::file, "sync");
}

unsigned int OSSHFile::getSize(unsigned long* bytes) {
  const Code code = enter(P::file, "getSize");
  *bytes = code ? *bytes : contentsOf(m_handle).size();
  return code;
}

unsigned int OSSHFile::close() {
  closeFile(m_handle);
  return enter(P::file, "close");
}

int sqloopenp(const char* path, unsigned int flags, unsigned int mode, int* handle, unsigned int reserved,
              unsigned int options) {
  const Code code = enter(P::file, "sqloopenp", path, flags, mode, reserved, options);
  *handle = code ? -1 : static_cast<int>(openFile(path));
  return *handle == -1 ? -1 : 0;
}

int sqloread(int handle, unsigned long count, void* buffer, unsigned long* received) {
  const Code code = enter(P::file, "sqloread", handle, count);
  *received = code ? 0 : contentsOf(handle).copy(static_cast<char*>(buffer), count);
  return code;
}

int sqloclose(int handle) {
  const Code code = enter(P::file, "sqloclose", handle);
  return closeFile(handle) ? code : Code{-9};
}

// --- System information.

unsigned int ossSysInfoOneTimeOnly() {
  return enter(P::facts, "ossSysInfoOneTimeOnly");
}

namespace {

template <class Info, class... Arguments>
unsigned int tell(Info FakePlatform::*prepared, Info* info, const Arguments&... call) {
  const unsigned int code = enter(P::facts, call...);
  if (code == 0 || code == OSS_SYSINFO_PARTIAL)
    *info = s_current->*prepared;
  return code;
}

}  // namespace

unsigned int ossGetOSInfo(OSSOSInfo* info) {
  return tell(&P::os, info, "ossGetOSInfo", stamp(info->version));
}
unsigned int ossGetCPUInfo(OSSCPUInfo* info) {
  return tell(&P::cpu, info, "ossGetCPUInfo", stamp(info->version), info->reserved4, info->reserved5);
}
unsigned int ossGetPhysMemInfo(OSSPhysMemInfo* info) {
  return tell(&P::physical, info, "ossGetPhysMemInfo", stamp(info->version));
}
unsigned int ossGetVirtualMemInfo(OSSVirtualMemInfo* info) {
  return tell(&P::virtualMemory, info, "ossGetVirtualMemInfo", stamp(info->version));
}
unsigned int ossGetPhysSwapInfo(OSSPhysSwapInfo* info) {
  return tell(&P::swap, info, "ossGetPhysSwapInfo", stamp(info->version));
}
unsigned int ossGetDiskInfo(const OSSDiskInfoParam* p, OSSDiskInfo* info) {
  return tell(&P::disk, info, "ossGetDiskInfo", stamp(p->version), p->path, p->options, p->filter,
              stamp(info->version));
}

// --- SQL call-level interface.

namespace {

bool succeeded(long code) {
  return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

/// Enters a call on a handle: the code to return, and when that is a failure its diagnostic.
template <class... Arguments>
SQLRETURN enterSql(short type, int handle, const char* function, const Arguments&... arguments) {
  P::Handle& on = s_current->handles[handle];
  SQLRETURN code = enter(P::sql, function, arguments...);
  if (code == 0 && on.type != type)
    code = SQL_INVALID_HANDLE;
  on.messages.assign(succeeded(code) ? 0 : 1, std::string(function) + " failed");
  return code;
}

/// The end of a call on a statement that has run: its result, or what it was refused with.
SQLRETURN execute(int handle, const char* text, SQLRETURN code) {
  if (!succeeded(code))
    return code;
  const P::Statement unprepared = {{}, {"unprepared: " + std::string(text)}};
  const auto found = s_current->statements.find(text);
  const P::Statement& statement = found == s_current->statements.end() ? unprepared : found->second;
  s_current->handles[handle].messages = statement.messages;
  s_current->handles[handle].result = &statement.table;
  return statement.messages.empty() ? code : SQL_ERROR;
}

std::string kind(short type) {
  return type == SQL_HANDLE_ENV ? "environment" : type == SQL_HANDLE_DBC ? "connection" : "statement";
}

}  // namespace

SQLRETURN SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output) {
  const auto code = enterSql(static_cast<short>(type - 1), input, "SQLAllocHandle", kind(type), input);
  *output = succeeded(code) ? ++s_current->lastHandle : 0;
  s_current->handles[*output].type = succeeded(code) ? type : 0;
  s_current->handles[*output].messages = s_current->handles[input].messages;
  s_current->opened(kind(type), succeeded(code) ? 1 : 0);
  return code;
}

SQLRETURN SQLFreeHandle(short type, SQLHANDLE handle) {
  const auto code = enterSql(type, handle, "SQLFreeHandle", kind(type), handle);
  short& open = s_current->handles[handle].type;
  EXPECT_TRUE(open == type || handle == 0) << "SQLFreeHandle of a stale handle";
  if (std::exchange(open, short{0}) == type)
    s_current->opened(kind(type), -1);
  return code;
}

SQLRETURN SQLSetConnectAttr(SQLHANDLE connection, int attribute, void* value, int length) {
  return enterSql(SQL_HANDLE_DBC, connection, "SQLSetConnectAttr", connection, attribute,
                  reinterpret_cast<long>(value), length);
}

SQLRETURN SQLConnect(SQLHANDLE connection, const char* dataSource, short dataSourceLength, const char* user,
                     short userLength, const char* password, short passwordLength) {
  return enterSql(SQL_HANDLE_DBC, connection, "SQLConnect", connection, dataSource, dataSourceLength, user,
                  userLength, password, passwordLength);
}

SQLRETURN SQLDisconnect(SQLHANDLE connection) {
  return enterSql(SQL_HANDLE_DBC, connection, "SQLDisconnect", connection);
}

SQLRETURN SQLExecDirect(SQLHANDLE statement, const char* text, int length) {
  const auto code = enterSql(SQL_HANDLE_STMT, statement, "SQLExecDirect", statement, text, length);
  return execute(statement, text, code);
}

SQLRETURN SQLTables(SQLHANDLE statement, const char* catalog, short catalogLength, const char* schema,
                    short schemaLength, const char* table, short tableLength, const char* type,
                    short typeLength) {
  const auto code = enterSql(SQL_HANDLE_STMT, statement, "SQLTables", statement, catalog, catalogLength,
                             schema, schemaLength, table, tableLength, type, typeLength);
  return execute(statement, "SQLTables", code);
}

SQLRETURN SQLNumResultCols(SQLHANDLE statement, short* count) {
  const auto code = enterSql(SQL_HANDLE_STMT, statement, "SQLNumResultCols", statement);
  if (succeeded(code))
    *count = static_cast<short>(s_current->handles[statement].result->at(0).size());
  return code;
}

SQLRETURN SQLDescribeCol(SQLHANDLE statement, unsigned short column, char* name, short nameSize,
                         short* nameLength, short* dataType, unsigned long* columnSize, short* decimalDigits,
                         short* nullable) {
  const auto code = enterSql(SQL_HANDLE_STMT, statement, "SQLDescribeCol", statement, column, nameSize);
  if (!succeeded(code))
    return code;
  const std::string text = *s_current->handles[statement].result->at(0).at(column - 1U);
  *nameLength = static_cast<short>(text.size());
  *dataType = *decimalDigits = *nullable = 1;
  *columnSize = 10;
  return deliver(text, name, static_cast<std::size_t>(nameSize)) ? code : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQLFetch(SQLHANDLE statement) {
  const auto code = enterSql(SQL_HANDLE_STMT, statement, "SQLFetch", statement);
  P::Handle& handle = s_current->handles[statement];
  return succeeded(code) && ++handle.row >= handle.result->size() ? SQL_NO_DATA : code;
}

SQLRETURN SQLGetData(SQLHANDLE statement, unsigned short column, short targetType, void* target,
                     long targetSize, long* indicator) {
  const auto code =
      enterSql(SQL_HANDLE_STMT, statement, "SQLGetData", statement, column, targetType, targetSize);
  if (!succeeded(code))
    return code;
  const P::Handle& handle = s_current->handles[statement];
  const Cell& cell = handle.result->at(handle.row).at(column - 1U);
  if (cell == unreadable)
    return SQL_ERROR;
  // Like a driver of the 32-bit days: only the low half of the indicator is written.
  const int length = cell ? static_cast<int>(cell->size()) : SQL_NULL_DATA;
  std::memcpy(indicator, &length, sizeof length);
  const bool fits = !cell || deliver(*cell, target, static_cast<std::size_t>(targetSize));
  return fits ? code : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQLGetDiagRec(short type, SQLHANDLE handle, short record, char* state, int* nativeError,
                        char* message, short messageSize, short* messageLength) {
  const SQLRETURN code = enter(P::sql, "SQLGetDiagRec", kind(type), handle, record, messageSize);
  if (!succeeded(code))
    return code;
  const std::vector<std::string>& messages = s_current->handles[handle].messages;
  const auto index = static_cast<std::size_t>(record - 1);
  if (index >= messages.size())
    return SQL_NO_DATA;
  deliver("HY000", state, 6);
  *nativeError = -1;
  *messageLength = static_cast<short>(messages[index].size());
  const bool fits = deliver(messages[index], message, static_cast<std::size_t>(messageSize));
  return fits ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

// --- Administration.

namespace {

sqlz_krcb s_controlBlock = {7};

/// The end of a call that answers with a text.
int answerWith(const std::string& text, char* buffer, unsigned long size, Code code) {
  if (!code)
    deliver(text, buffer, size);
  return code;
}

}  // namespace

sqlz_krcb* sqlz_krcbp = &s_controlBlock;

int sqleGetLevelInfo(unsigned int version, sqleLevelInfo* level) {
  const Code code = enter(P::admin, "sqleGetLevelInfo", version);
  if (!code)
    *level = s_current->level;
  return code;
}

int katoDbDirOpenScan(unsigned int version, katoDbDirOpenScanStruct* request, sqlca*) {
  if (enter(P::admin, "katoDbDirOpenScan", version, request->path, request->handle))
    return -1;
  s_current->directoryPosition = 0;
  request->handle = 5;
  request->dbEntries = static_cast<unsigned short>(s_current->databases.size());
  s_current->opened("scan");
  return 0;
}

int katoDbDirGetNextEntry(unsigned int version, katoDbDirNextEntryStruct* request, sqlca*) {
  const Code code = enter(P::admin, "katoDbDirGetNextEntry", version, request->handle);
  if (code || s_current->directoryPosition >= s_current->databases.size())
    return -1;
  request->entry = &s_current->directoryEntry;
  return answerWith(s_current->databases[s_current->directoryPosition++], request->entry->alias, 256, code);
}

int katoDbDirCloseScan(unsigned int version, katoDbDirCloseScanStruct* request, sqlca*) {
  const Code code = enter(P::admin, "katoDbDirCloseScan", version, request->handle);
  s_current->opened("scan", request->handle == 5 ? -1 : 0);
  return request->handle == 5 ? code : Code{-2};
}

int sqloInstallPath(unsigned long size, char* buffer) {
  return answerWith("/opt/kato", buffer, size, enter(P::admin, "sqloInstallPath", size));
}

int sqloGetInstanceOwnerName(char* buffer, unsigned long size) {
  return answerWith("katoinst1", buffer, size, enter(P::admin, "sqloGetInstanceOwnerName", size));
}

int sqlfGetGDBPath(const char* database, char* buffer, int flags) {
  return answerWith("/db/" + std::string(database) + '/', buffer, 256,
                    enter(P::admin, "sqlfGetGDBPath", database, flags));
}

int sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member) {
  return answerWith(globalPath + std::string("member/"), buffer, 256,
                    enter(P::admin, "sqlfGetMemberDBPathFromGDBPath", globalPath, member));
}

// --- Sockets.

unsigned int sqloPdbCommFncInit() {
  s_current->opened("communication");
  return enter(P::network, "sqloPdbCommFncInit");
}

unsigned int sqloPdbCommFncTerm() {
  s_current->opened("communication", -1);
  s_current->closeAll("socket");
  return enter(P::network, "sqloPdbCommFncTerm");
}

unsigned int sqloPdbCreateSocket(int* handle, int options) {
  const Code code = enter(P::network, "sqloPdbCreateSocket", options);
  *handle = code ? -1 : ++s_current->lastSocket;
  s_current->opened("socket", code ? 0 : 1);
  return code;
}

unsigned int sqloPdbTcpIpResolveHostName(const char* host, SqloHostAddress* address, int retries,
                                         int options) {
  deliver(host, address->bytes, sizeof address->bytes);
  return enter(P::network, "sqloPdbTcpIpResolveHostName", host, retries, options);
}

unsigned int sqloPdbInitNodeAddrHndl(int type, SqloNodeAddress* node, const SqloHostAddress* address,
                                     unsigned int port) {
  const char* host = reinterpret_cast<const char*>(address->bytes);
  deliver(host + (':' + std::to_string(port)), node->bytes, sizeof node->bytes);
  return enter(P::network, "sqloPdbInitNodeAddrHndl", type, host, port);
}

unsigned int sqloPdbConnectSocket(int handle, const SqloNodeAddress* node) {
  s_current->sent.emplace_back();
  return enter(P::network, "sqloPdbConnectSocket", handle, reinterpret_cast<const char*>(node->bytes));
}

unsigned int sqloPdbSendBuffer(int handle, const void* data, unsigned int count, unsigned int* sent) {
  const Code code = enter(P::network, "sqloPdbSendBuffer", handle, count);
  *sent = code ? 0 : std::min(count, s_current->sendLimit);
  s_current->sent.back().append(static_cast<const char*>(data), *sent);
  return code;
}

unsigned int sqloPdbRecvBuffer(int handle, void* buffer, unsigned int size, unsigned int* received,
                               int waitSeconds, int options) {
  *received = 0;
  if (const Code code = enter(P::network, "sqloPdbRecvBuffer", handle, size, waitSeconds, options))
    return code;
  auto& responses = s_current->responses;
  if (responses.empty() || responses.front().empty()) {
    responses.erase(responses.begin(), responses.begin() + (responses.empty() ? 0 : 1));
    return SQLO_PDB_PEER_CLOSED;
  }
  std::string& piece = responses.front().front();
  *received = static_cast<unsigned int>(piece.copy(static_cast<char*>(buffer), size));
  piece.erase(0, *received);
  if (piece.empty())
    responses.front().erase(responses.front().begin());
  return 0;
}

unsigned int sqloPdbCloseSocket(int handle) {
  s_current->opened("socket", -1);
  return enter(P::network, "sqloPdbCloseSocket", handle);
}

// --- The system library. The test framework and the sanitizers call some of these, too.

namespace {

/// What popen opens.
struct Pipe {
  std::string output;
  std::size_t position = 0;
  bool atEnd = false;
};

}  // namespace

extern "C" {

char* __real_getenv(const char* name);
[[noreturn]] void __real_exit(int status);

FILE* __wrap_popen(const char* command, const char* mode) {
  if (enter(P::process, "popen", command, mode))
    return nullptr;
  s_current->opened("pipe");
  const auto found = s_current->commands.find(command);
  return reinterpret_cast<FILE*>(new Pipe{found == s_current->commands.end() ? "" : found->second});
}

char* __wrap_fgets(char* buffer, int size, FILE* file) {
  auto& [output, position, atEnd] = *reinterpret_cast<Pipe*>(file);
  if (enter(P::process, "fgets", size))
    return nullptr;
  const std::size_t room = static_cast<std::size_t>(size) - 1;
  const std::size_t lineEnd = output.find('\n', position);
  const std::size_t count = std::min(room, std::min(lineEnd, output.size() - 1) + 1 - position);
  atEnd = lineEnd == std::string::npos && count < room;
  deliver(output.substr(position, count), buffer, count + 1);
  position += count;
  return count == 0 ? nullptr : buffer;
}

int __wrap_feof(FILE* file) {
  enter(P::process, "feof");
  return reinterpret_cast<Pipe*>(file)->atEnd;
}

int __wrap_pclose(FILE* file) {
  delete reinterpret_cast<Pipe*>(file);
  s_current->opened("pipe", -1);
  return enter(P::process, "pclose");
}

char* __wrap_getenv(const char* name) {
  if (s_current == nullptr || std::strcmp(name, "HOME") != 0)
    return __real_getenv(name);
  return enter(P::process, "getenv", name) ? nullptr : const_cast<char*>(s_current->home);
}

int __wrap_gethostname(char* name, size_t size) {
  return answerWith("node1", name, size, enter(P::process, "gethostname", size));
}

void __wrap_exit(int status) {
  if (s_insteadOfExit != nullptr)
    std::longjmp(*s_insteadOfExit, (status & 0xFF) + 1);
  __real_exit(status);
}

void progressShow(const char*) {}
void progressHide() {}

}  // extern "C"
