// Diagnostics of the SQL call-level interface: the driver manager's, and our own where it has none.

#include <algorithm>
#include <cstring>

#include "platform/host/sqlcli/mirel_host_session.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"
#include "platform/sqlcli.h"

namespace {

constexpr std::size_t kStateSize = 6;

/// Where a record goes.
struct Record {
  char* state;
  int* nativeError;
  char* message;
  std::size_t size;
  short* length;
};

SQLRETURN complain(const host::Complaint& complaint, short number, const Record& record) {
  if (number > 1) {
    return SQL_NO_DATA;
  }
  host::copyCut(complaint.state, record.state, kStateSize);
  const std::size_t length = std::strlen(complaint.text);
  *record.length = static_cast<short>(length);
  return host::copyCut(complaint.text, record.message, record.size) == length ? SQL_SUCCESS
                                                                              : SQL_SUCCESS_WITH_INFO;
}

/// Brings a message into one line: NULs inside it and line ends become blanks, those at its end go.
/// `reported` is its length as the driver tells it; the buffer was all NULs before. A message that fits to
/// the byte is whole: drivers tell more where they cut, or give the rest as the next record (PostgreSQL's).
void makeOneLine(char* message, std::size_t size, short reported) {
  message[size - 1] = '\0';
  std::size_t length = std::clamp<std::size_t>(static_cast<std::size_t>(std::max<short>(reported, 0)),
                                               std::strlen(message), size - 1);
  const bool isCut = reported >= static_cast<short>(size);
  std::replace_if(
      message, message + length, [](char c) { return c == '\0' || (c >= '\t' && c <= '\r'); }, ' ');
  while (length > 0 && message[length - 1] == ' ') {
    --length;
  }
  message[isCut ? host::wholeCharacters({message, length}) : length] = '\0';
}

SQLRETURN report(short type, host::OdbcHandle native, short number, const Record& record) {
  const SQLRETURN code =
      host::odbc().getDiagRec(type, native, number, host::odbcText(record.state), record.nativeError,
                              host::odbcText(record.message), static_cast<short>(record.size), record.length);
  if (!sqlSucceeded(code)) {
    return code;
  }
  makeOneLine(record.message, record.size, *record.length);
  if (*record.length >= static_cast<short>(record.size)) {
    return SQL_SUCCESS_WITH_INFO;
  }
  *record.length = static_cast<short>(std::strlen(record.message));
  return code;
}

template <class Kind>
SQLRETURN reportOf(SQLHANDLE handle, short number, const Record& record) {
  const Kind* found = host::handles().find<Kind>(handle);
  return found != nullptr ? report(Kind::kType, found->native, number, record) : SQL_INVALID_HANDLE;
}

SQLRETURN reportOf(short type, SQLHANDLE handle, short number, const Record& record) {
  switch (type) {
    case SQL_HANDLE_ENV:
      return reportOf<host::Environment>(handle, number, record);
    case SQL_HANDLE_DBC:
      return reportOf<host::Connection>(handle, number, record);
    case SQL_HANDLE_STMT:
      return reportOf<host::Statement>(handle, number, record);
    default:
      return SQL_INVALID_HANDLE;
  }
}

/// An allocation that failed left no handle to ask; its reason is with us or with the handle above.
SQLRETURN reportAllocation(short type, short number, const Record& record) {
  const host::AllocationFailure failure = host::allocationFailure(type);
  if (failure.complaint != nullptr) {
    return complain(*failure.complaint, number, record);
  }
  return reportOf(static_cast<short>(type - 1), failure.parent, number, record);
}

}  // namespace

SQLRETURN SQLGetDiagRec(short type, SQLHANDLE handle, short number, char* state, int* nativeError,
                        char* message, short messageSize, short* messageLength) {
  if (number < 1 || messageSize < 1 || message == nullptr) {
    return SQL_ERROR;
  }
  const Record record{state, nativeError, message, static_cast<std::size_t>(messageSize), messageLength};
  std::memset(state, 0, kStateSize);
  std::memset(message, 0, record.size);
  *nativeError = 0;
  *messageLength = 0;
  if (handle == SQL_NULL_HANDLE) {
    return reportAllocation(type, number, record);
  }
  const auto* statement = host::handles().find<host::Statement>(handle);
  if (type == SQL_HANDLE_STMT && statement != nullptr && statement->complaint != nullptr) {
    return complain(*statement->complaint, number, record);
  }
  return reportOf(type, handle, number, record);
}
