// The smallest machine for a template to be walked on; nothing real is touched. A command prints itself, a
// statement answers with a table of its own bytes, and fails when it begins with an exclamation mark. What is
// not here is all one function that grants, or one that refuses; see CMakeLists.txt.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/admin.h"
#include "platform/sqlcli.h"

namespace {

/// Of the statement that runs.
std::string s_statement;
unsigned long s_row;

/// The statement's bytes from `position` on, cut to the room they have.
SQLRETURN deliver(unsigned long position, char* target, long size) {
  const std::string text = s_statement.substr(std::min(position, s_statement.size()));
  std::snprintf(target, static_cast<unsigned long>(size), "%s", text.c_str());
  return *target == '!' ? SQL_ERROR : SQL_SUCCESS;
}

}  // namespace

sqlz_krcb* sqlz_krcbp = new sqlz_krcb{};

extern "C" int mirel_fuzz_grant() {
  return 0;
}

extern "C" int mirel_fuzz_refuse() {
  return -1;
}

extern "C" FILE* __wrap_popen(const char* command, const char* mode) {
  return fmemopen(const_cast<char*>(command), strlen(command), mode);
}

SQLRETURN SQLExecDirect(SQLHANDLE, const char* text, int) {
  s_statement = text;
  s_row = 0;
  return *text == '!' ? SQL_ERROR : SQL_SUCCESS;
}

SQLRETURN SQLNumResultCols(SQLHANDLE, short* count) {
  *count = static_cast<short>(s_statement.size() % 4);
  return SQL_SUCCESS;
}

SQLRETURN SQLDescribeCol(SQLHANDLE, unsigned short column, char* name, short nameSize, short*, short*,
                         unsigned long*, short*, short*) {
  return deliver(column, name, nameSize);
}

SQLRETURN SQLFetch(SQLHANDLE) {
  return s_row++ < s_statement.size() % 3 ? SQL_SUCCESS : SQL_NO_DATA;
}

SQLRETURN SQLGetData(SQLHANDLE, unsigned short column, short, void* target, long size, long* indicator) {
  *indicator = s_statement[0] == '?' ? SQL_NULL_DATA : 0;
  return deliver(s_row + column, static_cast<char*>(target), size);
}
