#pragma once
/// The ODBC driver manager (unixODBC), opened at run time.
///
/// <sql.h> and platform/sqlcli.h declare the same names with different types, so they never meet in one
/// source file. Here the manager's functions are pointers with plain C++ types; the one file that includes
/// <sql.h> fills them in and checks their types and the constants below against it.

#include <cstddef>

namespace host {

using OdbcHandle = void*;

/// The manager's functions, as the ODBC 3 reference describes them.
struct Odbc {
  short (*allocHandle)(short type, OdbcHandle input, OdbcHandle* output);
  short (*freeHandle)(short type, OdbcHandle handle);
  short (*setEnvAttr)(OdbcHandle environment, int attribute, void* value, int length);
  short (*setConnectAttr)(OdbcHandle connection, int attribute, void* value, int length);
  short (*dataSources)(OdbcHandle environment, unsigned short direction, unsigned char* name, short nameSize,
                       short* nameLength, unsigned char* description, short descriptionSize,
                       short* descriptionLength);
  short (*connect)(OdbcHandle connection, unsigned char* dataSource, short dataSourceLength,
                   unsigned char* user, short userLength, unsigned char* password, short passwordLength);
  short (*disconnect)(OdbcHandle connection);
  short (*getInfo)(OdbcHandle connection, unsigned short item, void* value, short size, short* length);
  short (*execDirect)(OdbcHandle statement, unsigned char* text, int length);
  short (*tables)(OdbcHandle statement, unsigned char* catalog, short catalogLength, unsigned char* schema,
                  short schemaLength, unsigned char* table, short tableLength, unsigned char* type,
                  short typeLength);
  short (*numResultCols)(OdbcHandle statement, short* count);
  short (*describeCol)(OdbcHandle statement, unsigned short column, unsigned char* name, short nameSize,
                       short* nameLength, short* dataType, unsigned long* columnSize, short* decimalDigits,
                       short* nullable);
  short (*rowCount)(OdbcHandle statement, long* count);
  short (*setStmtAttr)(OdbcHandle statement, int attribute, void* value, int length);
  short (*bindCol)(OdbcHandle statement, unsigned short column, short targetType, void* target,
                   long targetSize, long* indicator);
  short (*freeStmt)(OdbcHandle statement, unsigned short option);
  short (*setPos)(OdbcHandle statement, unsigned long row, unsigned short operation, unsigned short lock);
  short (*cancel)(OdbcHandle statement);
  short (*fetch)(OdbcHandle statement);
  short (*getData)(OdbcHandle statement, unsigned short column, short targetType, void* target,
                   long targetSize, long* indicator);
  short (*getDiagRec)(short type, OdbcHandle handle, short record, unsigned char* state, int* nativeError,
                      unsigned char* message, short messageSize, short* messageLength);
};

inline constexpr int kOdbcLoginTimeout = 103;  ///< SQL_ATTR_LOGIN_TIMEOUT, in seconds
inline constexpr unsigned short kOdbcDriverName = 6;
inline constexpr unsigned short kOdbcDriverVersion = 7;
inline constexpr unsigned short kOdbcEngineName = 17;
inline constexpr unsigned short kOdbcEngineVersion = 18;
inline constexpr unsigned short kOdbcIdentifierCase = 28;
inline constexpr unsigned short kOdbcUpperCase = 1;  ///< answer: unquoted names are kept in upper case
inline constexpr unsigned short kOdbcDriverOdbcVersion = 77;
inline constexpr unsigned short kOdbcGetDataExtensions = 81;
inline constexpr unsigned int kOdbcGetDataInBlocks = 4;  ///< answer: values of any row of a block can be read
inline constexpr int kOdbcRowBindType = 5;               ///< the distance between two rows, in bytes
inline constexpr int kOdbcRowStatus = 25;
inline constexpr int kOdbcRowsFetched = 26;
inline constexpr int kOdbcRowArraySize = 27;
inline constexpr unsigned short kOdbcRowError = 5;  ///< status of a row
inline constexpr unsigned short kOdbcUnbind = 2;
inline constexpr unsigned short kOdbcPosition = 0;
inline constexpr unsigned short kOdbcLockNoChange = 0;
inline constexpr unsigned short kOdbcFetchFirst = 2;
inline constexpr unsigned short kOdbcFetchNext = 1;

/// Opens the manager, libodbc.so.2, unless it is open. Its symbols stay local to it, and it stays open for
/// the rest of the process. On failure `problem` receives one line that says what to install.
bool openOdbc(char* problem, std::size_t size);

/// The manager's functions; only after `openOdbc` succeeded.
const Odbc& odbc();

/// Keeps the manager's configuration library in memory from now on, where there is one. Drivers open and
/// close it, and each closing leaks what it had read of the ini files.
void keepOdbcConfiguration();

/// A text for the manager, whose functions take the texts that they leave alone without const, too.
inline unsigned char* odbcText(const char* text) {
  return reinterpret_cast<unsigned char*>(const_cast<char*>(text));
}

/// Whether the call that gave this code is still under way (SQL_STILL_EXECUTING, SQL_NEED_DATA and the like).
/// The manager does not free a statement then unless it was cancelled.
bool isUnfinished(short code);

/// A new environment of the manager that speaks ODBC 3; null on failure. The caller frees it.
OdbcHandle allocateOdbcEnvironment();

}  // namespace host
