#pragma once
/// SQL call-level interface: the subset of ISO/IEC 9075-3 (SQL/CLI) that the core uses, with 32-bit
/// integer handles and the query-patroller bypass attribute.
///
/// Functions return SQL_SUCCESS or SQL_SUCCESS_WITH_INFO when they did their work. Texts go in with
/// their length in bytes or SQL_NTS; texts come out NUL-terminated, cut to the buffer with
/// SQL_SUCCESS_WITH_INFO when they are longer.

using SQLRETURN = short;
using SQLHANDLE = int;

inline constexpr SQLRETURN SQL_SUCCESS = 0;
inline constexpr SQLRETURN SQL_SUCCESS_WITH_INFO = 1;
inline constexpr SQLRETURN SQL_NO_DATA = 100;
inline constexpr SQLRETURN SQL_ERROR = -1;
inline constexpr SQLRETURN SQL_INVALID_HANDLE = -2;

/// Whether a call of the interface did its work.
inline bool sqlSucceeded(SQLRETURN code) {
  return code == SQL_SUCCESS || code == SQL_SUCCESS_WITH_INFO;
}

inline constexpr short SQL_HANDLE_ENV = 1;
inline constexpr short SQL_HANDLE_DBC = 2;
inline constexpr short SQL_HANDLE_STMT = 3;
inline constexpr SQLHANDLE SQL_NULL_HANDLE = 0;

inline constexpr short SQL_NTS = -3;        ///< the text ends at its NUL
inline constexpr int SQL_NULL_DATA = -1;    ///< indicator of a value that is SQL NULL
inline constexpr short SQL_C_CHAR = 1;      ///< deliver a value as text
inline constexpr int SQL_IS_UINTEGER = -5;  ///< the attribute's value stands in the pointer itself
inline constexpr int SQL_ATTR_QUERY_PATROLLER_BYPASS = 2466;

extern "C" {

/// Makes a handle of `type` below `input` (SQL_NULL_HANDLE for an environment); 0 in `*output` on failure.
SQLRETURN SQLAllocHandle(short type, SQLHANDLE input, SQLHANDLE* output);

/// Releases a handle. The core releases an environment before its last connection, which is accepted.
SQLRETURN SQLFreeHandle(short type, SQLHANDLE handle);

SQLRETURN SQLSetConnectAttr(SQLHANDLE connection, int attribute, void* value, int length);

/// Connects to a data source; empty user and password mean the operating-system user.
SQLRETURN SQLConnect(SQLHANDLE connection, const char* dataSource, short dataSourceLength, const char* user,
                     short userLength, const char* password, short passwordLength);
SQLRETURN SQLDisconnect(SQLHANDLE connection);

SQLRETURN SQLExecDirect(SQLHANDLE statement, const char* text, int length);

/// The tables that match; a null name matches all.
SQLRETURN SQLTables(SQLHANDLE statement, const char* catalog, short catalogLength, const char* schema,
                    short schemaLength, const char* table, short tableLength, const char* type,
                    short typeLength);

SQLRETURN SQLNumResultCols(SQLHANDLE statement, short* count);

/// Describes column `column` (counted from 1); `nameSize` is the size of `name` in bytes.
SQLRETURN SQLDescribeCol(SQLHANDLE statement, unsigned short column, char* name, short nameSize,
                         short* nameLength, short* dataType, unsigned long* columnSize, short* decimalDigits,
                         short* nullable);

/// Moves to the next row; SQL_NO_DATA behind the last one.
SQLRETURN SQLFetch(SQLHANDLE statement);

/// The value of one column of the current row; `*indicator` is its length in bytes or SQL_NULL_DATA.
SQLRETURN SQLGetData(SQLHANDLE statement, unsigned short column, short targetType, void* target,
                     long targetSize, long* indicator);

/// Diagnostic record `record` (counted from 1) of the handle's last call; SQL_NO_DATA behind the last one.
/// `state` takes 6 bytes.
SQLRETURN SQLGetDiagRec(short type, SQLHANDLE handle, short record, char* state, int* nativeError,
                        char* message, short messageSize, short* messageLength);

}  // extern "C"
