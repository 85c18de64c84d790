#include "platform/host/sqlcli/mirel_host_odbc.h"

#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace host {

static_assert(kOdbcLoginTimeout == SQL_ATTR_LOGIN_TIMEOUT);
static_assert(kOdbcDriverName == SQL_DRIVER_NAME && kOdbcDriverVersion == SQL_DRIVER_VER);
static_assert(kOdbcEngineName == SQL_DBMS_NAME && kOdbcEngineVersion == SQL_DBMS_VER);
static_assert(kOdbcIdentifierCase == SQL_IDENTIFIER_CASE && kOdbcUpperCase == SQL_IC_UPPER);
static_assert(kOdbcFetchFirst == SQL_FETCH_FIRST && kOdbcFetchNext == SQL_FETCH_NEXT);

static_assert(kOdbcDriverOdbcVersion == SQL_DRIVER_ODBC_VER);
static_assert(kOdbcGetDataExtensions == SQL_GETDATA_EXTENSIONS && kOdbcGetDataInBlocks == SQL_GD_BLOCK);
static_assert(kOdbcRowBindType == SQL_ATTR_ROW_BIND_TYPE && kOdbcRowStatus == SQL_ATTR_ROW_STATUS_PTR);
static_assert(kOdbcRowsFetched == SQL_ATTR_ROWS_FETCHED_PTR && kOdbcRowArraySize == SQL_ATTR_ROW_ARRAY_SIZE);
static_assert(kOdbcRowError == SQL_ROW_ERROR && kOdbcUnbind == SQL_UNBIND);
static_assert(kOdbcPosition == SQL_POSITION && kOdbcLockNoChange == SQL_LOCK_NO_CHANGE);

namespace {

constexpr char kLibrary[] = "libodbc.so.2";
constexpr char kConfigurationLibrary[] = "libodbcinst.so.2";

constinit Odbc functions{};
constinit bool isOpen = false;

/// Looks a function up. `Function` is its type in <sql.h>, which has to be that of the pointer.
template <class Function>
bool find(void* library, const char* name, Function** function) {
  *function = reinterpret_cast<Function*>(dlsym(library, name));
  return *function != nullptr;
}

bool findAll(void* library, Odbc* all) {
  return find<decltype(SQLAllocHandle)>(library, "SQLAllocHandle", &all->allocHandle) &&
         find<decltype(SQLFreeHandle)>(library, "SQLFreeHandle", &all->freeHandle) &&
         find<decltype(SQLSetEnvAttr)>(library, "SQLSetEnvAttr", &all->setEnvAttr) &&
         find<decltype(SQLSetConnectAttr)>(library, "SQLSetConnectAttr", &all->setConnectAttr) &&
         find<decltype(SQLDataSources)>(library, "SQLDataSources", &all->dataSources) &&
         find<decltype(SQLConnect)>(library, "SQLConnect", &all->connect) &&
         find<decltype(SQLDisconnect)>(library, "SQLDisconnect", &all->disconnect) &&
         find<decltype(SQLGetInfo)>(library, "SQLGetInfo", &all->getInfo) &&
         find<decltype(SQLExecDirect)>(library, "SQLExecDirect", &all->execDirect) &&
         find<decltype(SQLTables)>(library, "SQLTables", &all->tables) &&
         find<decltype(SQLNumResultCols)>(library, "SQLNumResultCols", &all->numResultCols) &&
         find<decltype(SQLDescribeCol)>(library, "SQLDescribeCol", &all->describeCol) &&
         find<decltype(SQLRowCount)>(library, "SQLRowCount", &all->rowCount) &&
         find<decltype(SQLSetStmtAttr)>(library, "SQLSetStmtAttr", &all->setStmtAttr) &&
         find<decltype(SQLBindCol)>(library, "SQLBindCol", &all->bindCol) &&
         find<decltype(SQLFreeStmt)>(library, "SQLFreeStmt", &all->freeStmt) &&
         find<decltype(SQLSetPos)>(library, "SQLSetPos", &all->setPos) &&
         find<decltype(SQLCancel)>(library, "SQLCancel", &all->cancel) &&
         find<decltype(SQLFetch)>(library, "SQLFetch", &all->fetch) &&
         find<decltype(SQLGetData)>(library, "SQLGetData", &all->getData) &&
         find<decltype(SQLGetDiagRec)>(library, "SQLGetDiagRec", &all->getDiagRec);
}

void explain(char* problem, std::size_t size) {
  const char* reason = dlerror();
  std::snprintf(problem, size,
                "%s, the ODBC driver manager, cannot be used: install unixODBC "
                "(package unixodbc or libodbc2) [%s]",
                kLibrary, reason != nullptr ? reason : "no reason given");
  std::replace(problem, problem + std::strlen(problem), '\n', ' ');
}

}  // namespace

bool openOdbc(char* problem, std::size_t size) {
  if (isOpen) {
    return true;
  }
  void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    explain(problem, size);
    return false;
  }
  if (!findAll(library, &functions)) {
    explain(problem, size);
    dlclose(library);
    return false;
  }
  isOpen = true;
  return true;
}

const Odbc& odbc() {
  return functions;
}

void keepOdbcConfiguration() {
  [[maybe_unused]] static void* const kept = dlopen(kConfigurationLibrary, RTLD_NOW | RTLD_LOCAL);
}

bool isUnfinished(short code) {
  return code > SQL_SUCCESS_WITH_INFO && code != SQL_NO_DATA;
}

OdbcHandle allocateOdbcEnvironment() {
  OdbcHandle environment = SQL_NULL_HANDLE;
  if (!SQL_SUCCEEDED(functions.allocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment))) {
    return nullptr;
  }
  void* version3 = reinterpret_cast<void*>(SQL_OV_ODBC3);
  if (!SQL_SUCCEEDED(functions.setEnvAttr(environment, SQL_ATTR_ODBC_VERSION, version3, SQL_IS_UINTEGER))) {
    functions.freeHandle(SQL_HANDLE_ENV, environment);
    return nullptr;
  }
  return environment;
}

}  // namespace host
