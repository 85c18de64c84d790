#include "tests/unit/fake_platform.h"

#include <algorithm>
#include <csetjmp>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iostream>

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
Code enter(const char* function, const Arguments&... arguments) {
  std::string line;
  ((line += (line.empty() ? "" : ", ") + shown(arguments)), ...);
  return {s_current->enter(function + ('(' + line + ')'))};
}

std::string stamp(unsigned long version) {
  return version == OSS_VERSION_STAMP ? "stamp" : std::to_string(version);
}

std::string tag(const char* file, unsigned int line) {
  return std::string(file) + ':' + std::to_string(line);
}

// --- The ends of calls.

/// Copies a text into a buffer of the caller, cut to its size; whether it fitted.
bool deliver(const std::string& text, void* target, std::size_t size) {
  const std::size_t count = std::min(text.size(), size - 1);
  std::memcpy(target, text.data(), count);
  static_cast<char*>(target)[count] = '\0';
  return count == text.size();
}

Code answerWith(const std::string& text, char* buffer, unsigned long size, Code code) {
  if (!code)
    deliver(text, buffer, size);
  return code;
}

template <class Info>
Code tell(Info FakePlatform::*prepared, Info* info, Code code) {
  if (!code || code.value == OSS_SYSINFO_PARTIAL)
    *info = s_current->*prepared;
  return code;
}

template <class Number>
Code give(Number* number, Number whenWell, Number otherwise, Code code) {
  *number = code ? otherwise : whenWell;
  return code;
}

Code opened(const char* what, Code code) {
  s_current->opened(what, code ? 0 : 1);
  return code;
}

/// Whether it can is not asked: a call that gives something back does so.
Code closed(const char* what, Code code) {
  s_current->opened(what, -1);
  return code;
}

}  // namespace

// --- The fake itself.

FakePlatform::FakePlatform() : m_previous(std::exchange(s_current, this)) {}

FakePlatform::~FakePlatform() {
  s_current = m_previous;
}

long FakePlatform::enter(const std::string& line) {
  m_calls.push_back(line);
  long code = 0;
  for (Fault& fault : m_faults)
    if (line.starts_with(fault.call) && (++fault.seen == fault.nth || fault.nth == 0))
      code = fault.code;
  return code;
}

std::string FakePlatform::calls(const std::string& beginning) const {
  std::string lines;
  for (const std::string& line : m_calls)
    if (line.starts_with(beginning) && line.starts_with("_ossMem") == beginning.starts_with("_ossMem"))
      lines += line + '\n';
  return lines;
}

long FakePlatform::count(const std::string& call) const {
  return std::count_if(m_calls.begin(), m_calls.end(), [&](auto& line) { return line.starts_with(call); });
}

std::vector<Cell> FakePlatform::cells(const std::string& line, char separator) {
  std::istringstream stream(line);
  std::vector<Cell> row;
  for (std::string cell; std::getline(stream, cell, separator);)
    row.push_back(cell == "NULL" ? Cell() : cell);
  return row;
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
  EXPECT_EQ("", standardOutput() + standardError()) << "left unread";
  EXPECT_EQ("", platform.open()) << "left open";
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
  return enter("ossOneTimeOnly");
}

void ossTerminate() {
  closed("service", enter("ossTerminate"));
}

int _ossMemAlloc(void** block, void* pool, unsigned long size, unsigned int flags, const char* file,
                 unsigned int line) {
  EXPECT_EQ(nullptr, pool);
  const Code code = opened("block", enter("_ossMemAlloc", size, flags, tag(file, line)));
  *block = code ? nullptr : std::malloc(size);
  if (!code)
    std::memset(*block, flags == 1 ? 0 : 0xA5, size);
  return code;
}

int _ossMemFree(void** block, unsigned long reserved1, unsigned long reserved2, const char* file,
                unsigned int line) {
  std::free(std::exchange(*block, nullptr));
  return closed("block", enter("_ossMemFree", reserved1, reserved2, tag(file, line)));
}

int ossSnprintf(char* buffer, unsigned long size, const char* format, ...) {
  if (enter("ossSnprintf", size, format))
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
int openFile(const char* path) {
  if (!s_current->files.contains(path))
    return -1;
  s_current->openFiles.push_back(path);
  s_current->opened("file");
  return static_cast<int>(s_current->openFiles.size());
}

std::string& contentsOf(long handle) {
  return s_current->files[s_current->openFiles.at(static_cast<std::size_t>(handle - 1))];
}

/// A handle is never used again.
Code closeFile(long handle, Code code) {
  if (handle <= 0 || std::exchange(s_current->openFiles.at(static_cast<std::size_t>(handle - 1)), "").empty())
    return {-9};
  return closed("file", code);
}

}  // namespace

OSSHFile::OSSHFile() : m_handle(-1) {}
OSSHFile::~OSSHFile() {
  closeFile(m_handle, {});
}

unsigned int OSSHFile::open(const OSSFileOpenParam* p) {
  if (const Code code = enter("open", stamp(p->version), p->path, p->options, p->access, p->sharing,
                              p->permissions, p->reserved))
    return code;
  if (p->options == 16)
    s_current->files[p->path] = "";
  m_handle = openFile(p->path);
  return m_handle == -1 ? 2 : 0;
}

unsigned int OSSHFile::write(const OSSFileWriteParam* p, unsigned long* written) {
  const Code code = give(written, p->count, 0UL, enter("write", stamp(p->version), p->count, p->reserved));
  contentsOf(m_handle).append(p->data, *written);
  return code;
}

unsigned int OSSHFile::read(const OSSFileReadParam* p, void* buffer, unsigned long* received) {
  const Code code = enter("read", stamp(p->version), p->count, p->reserved);
  *received = code ? 0 : contentsOf(m_handle).copy(static_cast<char*>(buffer), p->count);
  return code;
}

unsigned int OSSHFile::sync() {
  return enter("sync");
}

unsigned int OSSHFile::getSize(unsigned long* bytes) {
  return give(bytes, contentsOf(m_handle).size(), *bytes, enter("getSize"));
}

unsigned int OSSHFile::close() {
  return closeFile(m_handle, enter("close"));
}

int sqloopenp(const char* path, unsigned int flags, unsigned int mode, int* handle, unsigned int reserved,
              unsigned int options) {
  *handle = enter("sqloopenp", path, flags, mode, reserved, options) ? -1 : openFile(path);
  return *handle == -1 ? -1 : 0;
}

int sqloread(int handle, unsigned long count, void* buffer, unsigned long* received) {
  const Code code = enter("sqloread", handle, count);
  *received = code ? 0 : contentsOf(handle).copy(static_cast<char*>(buffer), count);
  return code;
}

int sqloclose(int handle) {
  return closeFile(handle, enter("sqloclose", handle));
}

// --- System information.

unsigned int ossSysInfoOneTimeOnly() {
  return enter("ossSysInfoOneTimeOnly");
}
unsigned int ossGetOSInfo(OSSOSInfo* info) {
  return tell(&P::os, info, enter("ossGetOSInfo", stamp(info->version)));
}
unsigned int ossGetCPUInfo(OSSCPUInfo* info) {
  return tell(&P::cpu, info, enter("ossGetCPUInfo", stamp(info->version), info->reserved4, info->reserved5));
}
unsigned int ossGetPhysMemInfo(OSSPhysMemInfo* info) {
  return tell(&P::physical, info, enter("ossGetPhysMemInfo", stamp(info->version)));
}
unsigned int ossGetVirtualMemInfo(OSSVirtualMemInfo* info) {
  return tell(&P::virtualMemory, info, enter("ossGetVirtualMemInfo", stamp(info->version)));
}
unsigned int ossGetPhysSwapInfo(OSSPhysSwapInfo* info) {
  return tell(&P::swap, info, enter("ossGetPhysSwapInfo", stamp(info->version)));
}
unsigned int ossGetDiskInfo(const OSSDiskInfoParam* p, OSSDiskInfo* info) {
  return tell(
      &P::disk, info,
      enter("ossGetDiskInfo", stamp(p->version), p->path, p->options, p->filter, stamp(info->version)));
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
  SQLRETURN code = enter(function, arguments...);
  if (code == 0 && on.type != type)
    code = SQL_INVALID_HANDLE;
  on.messages.assign(succeeded(code) ? 0 : 1, std::string(function) + " failed");
  return code;
}

/// The end of a call on a statement that has run: its result, or what it was refused with.
SQLRETURN execute(int handle, const std::string& text, SQLRETURN code) {
  if (!succeeded(code))
    return code;
  const P::Statement unprepared = {{}, {"unprepared: " + text}};
  const P::Statement& statement = s_current->statements.try_emplace(text, unprepared).first->second;
  s_current->handles[handle].messages = statement.messages;
  s_current->handles[handle].result = &statement.table;
  return statement.messages.empty() ? code : SQL_ERROR;
}

const char* kind(short type) {
  return type == SQL_HANDLE_ENV ? "environment" : type == SQL_HANDLE_DBC ? "connection" : "statement";
}

}  // namespace

SQLRETURN SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output) {
  const auto code =
      enterSql(static_cast<short>(type - 1), input, "SQLAllocHandle", std::string(kind(type)), input);
  *output = succeeded(code) ? ++s_current->lastHandle : 0;
  s_current->handles[*output].type = succeeded(code) ? type : 0;
  s_current->handles[*output].messages = s_current->handles[input].messages;
  s_current->opened(kind(type), succeeded(code) ? 1 : 0);
  return code;
}

SQLRETURN SQLFreeHandle(short type, SQLHANDLE handle) {
  const auto code = enterSql(type, handle, "SQLFreeHandle", std::string(kind(type)), handle);
  const short was = std::exchange(s_current->handles[handle].type, short{0});
  EXPECT_TRUE(was == type || handle == 0) << "SQLFreeHandle of a stale handle";
  s_current->opened(kind(type), was == type ? -1 : 0);
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
  return execute(statement, text,
                 enterSql(SQL_HANDLE_STMT, statement, "SQLExecDirect", statement, text, length));
}

SQLRETURN SQLTables(SQLHANDLE statement, const char* catalog, short catalogLength, const char* schema,
                    short schemaLength, const char* table, short tableLength, const char* type,
                    short typeLength) {
  return execute(statement, "SQLTables",
                 enterSql(SQL_HANDLE_STMT, statement, "SQLTables", statement, catalog, catalogLength, schema,
                          schemaLength, table, tableLength, type, typeLength));
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
  // Like a driver of the 32-bit days: only the low half of the indicator is written.
  const int length = cell ? static_cast<int>(cell->size()) : SQL_NULL_DATA;
  std::memcpy(indicator, &length, sizeof length);
  const bool fits = !cell || deliver(*cell, target, static_cast<std::size_t>(targetSize));
  return fits ? code : SQL_SUCCESS_WITH_INFO;
}

SQLRETURN SQLGetDiagRec(short type, SQLHANDLE handle, short record, char* state, int* nativeError,
                        char* message, short messageSize, short* messageLength) {
  const SQLRETURN code = enter("SQLGetDiagRec", std::string(kind(type)), handle, record, messageSize);
  const std::vector<std::string>& messages = s_current->handles[handle].messages;
  const auto index = static_cast<std::size_t>(record - 1);
  if (!succeeded(code) || index >= messages.size())
    return succeeded(code) ? SQL_NO_DATA : code;
  deliver("HY000", state, 6);
  *nativeError = -1;
  *messageLength = static_cast<short>(messages[index].size());
  const bool fits = deliver(messages[index], message, static_cast<std::size_t>(messageSize));
  return fits ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

// --- Administration.

static sqlz_krcb s_controlBlock = {7};
sqlz_krcb* sqlz_krcbp = &s_controlBlock;

int sqleGetLevelInfo(unsigned int version, sqleLevelInfo* level) {
  return tell(&P::level, level, enter("sqleGetLevelInfo", version));
}

int katoDbDirOpenScan(unsigned int version, katoDbDirOpenScanStruct* request, sqlca*) {
  if (opened("scan", enter("katoDbDirOpenScan", version, request->path, request->handle)))
    return -1;
  request->handle = 5;
  request->dbEntries = 1;
  return 0;
}

int katoDbDirGetNextEntry(unsigned int version, katoDbDirNextEntryStruct* request, sqlca*) {
  request->entry = &s_current->directoryEntry;
  return enter("katoDbDirGetNextEntry", version, request->handle);
}

int katoDbDirCloseScan(unsigned int version, katoDbDirCloseScanStruct* request, sqlca*) {
  const Code code = enter("katoDbDirCloseScan", version, request->handle);
  return request->handle == 5 ? closed("scan", code) : Code{-2};
}

int sqloInstallPath(unsigned long size, char* buffer) {
  return answerWith("/opt/kato", buffer, size, enter("sqloInstallPath", size));
}

int sqloGetInstanceOwnerName(char* buffer, unsigned long size) {
  return answerWith("katoinst1", buffer, size, enter("sqloGetInstanceOwnerName", size));
}

int sqlfGetGDBPath(const char* database, char* buffer, int flags) {
  return answerWith("/db/" + std::string(database) + '/', buffer, 256,
                    enter("sqlfGetGDBPath", database, flags));
}

int sqlfGetMemberDBPathFromGDBPath(const char* globalPath, char* buffer, short member) {
  return answerWith(globalPath + std::string("member/"), buffer, 256,
                    enter("sqlfGetMemberDBPathFromGDBPath", globalPath, member));
}

// --- Sockets.

unsigned int sqloPdbCommFncInit() {
  s_current->opened("communication");
  return enter("sqloPdbCommFncInit");
}

unsigned int sqloPdbCommFncTerm() {
  s_current->closeAll("socket");
  return closed("communication", enter("sqloPdbCommFncTerm"));
}

unsigned int sqloPdbCreateSocket(int* handle, int options) {
  return give(handle, ++s_current->lastSocket, -1, opened("socket", enter("sqloPdbCreateSocket", options)));
}

unsigned int sqloPdbTcpIpResolveHostName(const char* host, SqloHostAddress* address, int retries,
                                         int options) {
  deliver(host, address->bytes, sizeof address->bytes);
  return enter("sqloPdbTcpIpResolveHostName", host, retries, options);
}

unsigned int sqloPdbInitNodeAddrHndl(int type, SqloNodeAddress* node, const SqloHostAddress* address,
                                     unsigned int port) {
  const char* host = reinterpret_cast<const char*>(address->bytes);
  deliver(host + (':' + std::to_string(port)), node->bytes, sizeof node->bytes);
  return enter("sqloPdbInitNodeAddrHndl", type, host, port);
}

unsigned int sqloPdbConnectSocket(int handle, const SqloNodeAddress* node) {
  s_current->sent.emplace_back();
  return enter("sqloPdbConnectSocket", handle, reinterpret_cast<const char*>(node->bytes));
}

unsigned int sqloPdbSendBuffer(int handle, const void* data, unsigned int count, unsigned int* sent) {
  const Code code =
      give(sent, std::min(count, s_current->sendLimit), 0U, enter("sqloPdbSendBuffer", handle, count));
  s_current->sent.back().append(static_cast<const char*>(data), *sent);
  return code;
}

unsigned int sqloPdbRecvBuffer(int handle, void* buffer, unsigned int size, unsigned int* received,
                               int waitSeconds, int options) {
  *received = 0;
  if (const Code code = enter("sqloPdbRecvBuffer", handle, size, waitSeconds, options))
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
  return closed("socket", enter("sqloPdbCloseSocket", handle));
}

// --- The system library. The test framework and the sanitizers call some of these, too.

extern "C" {

char* __real_fgets(char* buffer, int size, FILE* file);
int __real_feof(FILE* file);
char* __real_getenv(const char* name);
[[noreturn]] void __real_exit(int status);
decltype(sqlogopt) __real_sqlogopt;

int __wrap_sqlogopt(int count, char* const* arguments, const char* shortOptions, SqloOptionState* state,
                    const SqloLongOption* longOptions) {
  const Code code = enter("sqlogopt", shortOptions);
  return code ? static_cast<int>(code) : __real_sqlogopt(count, arguments, shortOptions, state, longOptions);
}

FILE* __wrap_popen(const char* command, const char* mode) {
  if (opened("pipe", enter("popen", command, mode)))
    return nullptr;
  std::string& output = s_current->commands[command];
  return fmemopen(output.data(), output.size(), mode);
}

char* __wrap_fgets(char* buffer, int size, FILE* file) {
  return enter("fgets", size) ? nullptr : __real_fgets(buffer, size, file);
}

int __wrap_feof(FILE* file) {
  enter("feof");
  return __real_feof(file);
}

int __wrap_pclose(FILE* file) {
  std::fclose(file);
  return closed("pipe", enter("pclose"));
}

char* __wrap_getenv(const char* name) {
  if (s_current == nullptr || std::strcmp(name, "HOME") != 0)
    return __real_getenv(name);
  return enter("getenv", name) ? nullptr : const_cast<char*>(s_current->home);
}

int __wrap_gethostname(char* name, size_t size) {
  return answerWith("node1", name, size, enter("gethostname", size));
}

void __wrap_exit(int status) {
  if (s_insteadOfExit != nullptr)
    std::longjmp(*s_insteadOfExit, (status & 0xFF) + 1);
  __real_exit(status);
}

}  // extern "C"
