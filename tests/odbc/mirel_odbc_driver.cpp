/// An ODBC driver for tests, loaded by the real driver manager. It does what a statement tells it to:
///
///     script WORD WORD; A, B; 1, 2; 3, ~
///
/// is a result of two columns and two rows. A value is a text, or one of
///
///     ~       SQL NULL
///     !       cannot be read
///     ?text   its length is not told
///     +text   comes as a whole, but with SQL_SUCCESS_WITH_INFO
///
/// and a row `fails` cannot be fetched. The words:
///
///     exec=CODE fetch=CODE   what these calls answer, if not success
///     messages=N says=TEXT   how many diagnostics there are, and their text
///     streams                the number of rows is not known
///     narrow                 lengths are written 32 bits wide
///     blocks=HOW             what asking for several rows at a time meets: it is `refused`; the driver makes
///     `one`
///                            of them; columns stay `unbound`; a failing row is `abrupt` and fails the call;
///                            the rows stay `unpositioned`, so that their values cannot be read by themselves
///
/// Any other statement has no rows. The file that MIREL_DRIVER_LOG names, if it does, gets a line for each
/// call that does something: the function and what it was given, line ends as blanks. MIREL_DRIVER_REFUSES is
/// the number of a connection attribute that the driver does not know.

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#define DRIVER extern "C" __attribute__((visibility("default"))) SQLRETURN SQL_API

namespace {

using Texts = std::vector<std::string>;

struct Bound {
  SQLPOINTER text = nullptr;
  SQLLEN size = 0;
  SQLLEN* length = nullptr;
};

struct Statement {
  std::map<std::string, std::string> words;
  Texts names;
  std::vector<Texts> rows;
  std::size_t next = 0;     // row of the next fetch
  std::size_t current = 0;  // row that values are read from
  std::size_t fetched = 0;  // rows of the last fetch
  std::size_t blockRows = 1, rowSize = 0;
  SQLULEN* count = nullptr;
  SQLUSMALLINT* status = nullptr;
  std::map<SQLUSMALLINT, Bound> bound;

  bool is(const std::string& word, const std::string& value = "") const {
    const auto found = words.find(word);
    return found != words.end() && found->second == value;
  }
  int number(const std::string& word) const {
    const auto found = words.find(word);
    return found != words.end() ? std::atoi(found->second.c_str()) : 0;
  }
};

Statement& of(SQLHSTMT handle) {
  return *static_cast<Statement*>(handle);
}

template <class... Arguments>
void note(const Arguments&... arguments) {
  if (const char* name = std::getenv("MIREL_DRIVER_LOG")) {
    std::ostringstream line;
    ((line << arguments << ' '), ...);
    std::string text = line.str();
    std::replace(text.begin(), text.end(), '\n', ' ');
    text.back() = '\n';
    std::ofstream(name, std::ios::app) << text;
  }
}

std::string given(const SQLCHAR* text, SQLINTEGER length) {
  const char* bytes = reinterpret_cast<const char*>(text);
  return length == SQL_NTS ? std::string(bytes) : std::string(bytes, static_cast<std::size_t>(length));
}

/// As much of a text as fits; whether it is all.
template <class Length>
bool give(const std::string& text, SQLPOINTER target, SQLLEN size, Length* length) {
  if (length != nullptr)
    *length = static_cast<Length>(text.size());
  if (target == nullptr || size <= 0)
    return true;
  const std::size_t kept = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  static_cast<char*>(target)[text.copy(static_cast<char*>(target), kept)] = '\0';
  return kept == text.size();
}

Texts parts(const std::string& text, char separator) {
  Texts all;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);)
    all.push_back(part.substr(std::min(part.size(), part.find_first_not_of(' '))));
  return all;
}

void read(Statement* statement, const std::string& text) {
  *statement = {};
  if (!text.starts_with("script"))
    return;
  const Texts clauses = parts(text, ';');
  for (const std::string& word : parts(clauses[0], ' '))
    statement->words[word.substr(0, word.find('='))] = word.substr(std::min(word.size(), word.find('=') + 1));
  for (std::size_t row = 1; row < clauses.size(); ++row)
    statement->rows.push_back(parts(clauses[row], ','));
  if (!statement->rows.empty()) {
    statement->names = statement->rows.front();
    statement->rows.erase(statement->rows.begin());
  }
}

/// The value of a column where it is wanted; nothing is written of one that cannot be read.
SQLRETURN value(const Statement& statement, std::size_t row, SQLUSMALLINT column, const Bound& to) {
  const std::string& text = statement.rows[row].at(column - 1u);
  const char kind = text.empty() ? '\0' : text[0];
  SQLLEN length = SQL_NULL_DATA;
  bool whole = true;
  if (kind == '!')
    return SQL_ERROR;
  if (kind != '~')
    whole = give(text.substr(kind == '?' || kind == '+' ? 1 : 0), to.text, to.size, &length);
  if (kind == '?')
    length = SQL_NO_TOTAL;
  std::memcpy(to.length, &length, statement.words.contains("narrow") ? sizeof(int) : sizeof length);
  return whole && kind != '+' ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

bool fails(const Statement& statement, std::size_t row) {
  return statement.rows[row] == Texts{"fails"};
}

template <class Pointer>
Pointer* moved(Pointer* pointer, std::size_t bytes) {
  return reinterpret_cast<Pointer*>(reinterpret_cast<char*>(pointer) + bytes);
}

/// Row `place` of a block: what becomes of it.
SQLUSMALLINT fill(const Statement& statement, std::size_t place) {
  SQLUSMALLINT status = SQL_ROW_SUCCESS;
  for (const auto& [column, to] : statement.bound) {
    const std::size_t bytes = place * statement.rowSize;
    const Bound here{static_cast<char*>(to.text) + bytes, to.size, moved(to.length, bytes)};
    if (fails(statement, statement.next + place) ||
        value(statement, statement.next + place, column, here) == SQL_ERROR)
      status = SQL_ROW_ERROR;
  }
  return status;
}

SQLRETURN fetchBlock(Statement* statement) {
  const std::size_t left = statement->rows.size() - statement->next;
  SQLRETURN code = SQL_SUCCESS;
  statement->fetched = 0;
  while (statement->fetched < std::min(left, statement->blockRows)) {
    const std::size_t place = statement->fetched;
    if (fails(*statement, statement->next + place) && statement->is("blocks", "abrupt")) {
      code = SQL_ERROR;
      break;
    }
    statement->status[place] = fill(*statement, place);
    code = statement->status[place] == SQL_ROW_ERROR ? SQL_SUCCESS_WITH_INFO : code;
    ++statement->fetched;
  }
  std::fill(statement->status + statement->fetched, statement->status + statement->blockRows,
            static_cast<SQLUSMALLINT>(SQL_ROW_NOROW));
  *statement->count = statement->fetched;
  return code;
}

}  // namespace

DRIVER SQLAllocHandle(SQLSMALLINT type, SQLHANDLE, SQLHANDLE* output) {
  *output = type == SQL_HANDLE_STMT ? static_cast<SQLHANDLE>(new Statement) : new int;
  return SQL_SUCCESS;
}

DRIVER SQLFreeHandle(SQLSMALLINT type, SQLHANDLE handle) {
  note("SQLFreeHandle", type);
  if (type == SQL_HANDLE_STMT)
    delete static_cast<Statement*>(handle);
  else
    delete static_cast<int*>(handle);
  return SQL_SUCCESS;
}

DRIVER SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
  return SQL_SUCCESS;
}

DRIVER SQLSetConnectAttr(SQLHDBC, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER length) {
  note("SQLSetConnectAttr", attribute, reinterpret_cast<SQLULEN>(value), length);
  const char* refused = std::getenv("MIREL_DRIVER_REFUSES");
  return refused != nullptr && std::atoi(refused) == attribute ? SQL_ERROR : SQL_SUCCESS;
}

DRIVER SQLConnect(SQLHDBC, SQLCHAR* name, SQLSMALLINT length, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT) {
  note("SQLConnect", given(name, length));
  return SQL_SUCCESS;
}

DRIVER SQLDisconnect(SQLHDBC) {
  note("SQLDisconnect");
  return SQL_SUCCESS;
}

DRIVER SQLGetInfo(SQLHDBC, SQLUSMALLINT item, SQLPOINTER target, SQLSMALLINT size, SQLSMALLINT* length) {
  static const std::map<SQLUSMALLINT, std::string> texts = {{SQL_DBMS_NAME, "Scripted"},
                                                            {SQL_DBMS_VER, "01.02.0003"},
                                                            {SQL_DRIVER_NAME, "mirel_test_driver"},
                                                            {SQL_DRIVER_VER, "01.00"},
                                                            {SQL_DRIVER_ODBC_VER, "03.51"}};
  if (item == SQL_GETDATA_EXTENSIONS)
    *static_cast<SQLUINTEGER*>(target) = SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BLOCK | SQL_GD_BOUND;
  else if (const auto text = texts.find(item); text != texts.end())
    give(text->second, target, size, length);
  else
    return SQL_ERROR;
  return SQL_SUCCESS;
}

DRIVER SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length) {
  note("SQLExecDirect", given(text, length));
  read(&of(handle), given(text, length));
  return static_cast<SQLRETURN>(of(handle).number("exec"));
}

DRIVER SQLCancel(SQLHSTMT) {
  note("SQLCancel");
  return SQL_SUCCESS;
}

DRIVER SQLRowCount(SQLHSTMT handle, SQLLEN* count) {
  *count = of(handle).words.contains("streams") ? -1 : static_cast<SQLLEN>(of(handle).rows.size());
  return SQL_SUCCESS;
}

DRIVER SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
  *count = static_cast<SQLSMALLINT>(of(handle).names.size());
  return SQL_SUCCESS;
}

DRIVER SQLDescribeCol(SQLHSTMT handle, SQLUSMALLINT column, SQLCHAR* name, SQLSMALLINT size,
                      SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* columnSize, SQLSMALLINT*,
                      SQLSMALLINT*) {
  *type = SQL_VARCHAR;
  *columnSize = 255;
  return give(of(handle).names.at(column - 1u), name, size, length) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

DRIVER SQLSetStmtAttr(SQLHSTMT handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
  Statement& statement = of(handle);
  const auto number = reinterpret_cast<std::size_t>(value);
  if (attribute == SQL_ATTR_ROW_BIND_TYPE)
    statement.rowSize = number;
  if (attribute == SQL_ATTR_ROW_STATUS_PTR)
    statement.status = static_cast<SQLUSMALLINT*>(value);
  if (attribute == SQL_ATTR_ROWS_FETCHED_PTR)
    statement.count = static_cast<SQLULEN*>(value);
  if (attribute != SQL_ATTR_ROW_ARRAY_SIZE)
    return SQL_SUCCESS;
  note("SQLSetStmtAttr", attribute, number);
  if (statement.is("blocks", "refused"))
    return SQL_ERROR;
  statement.blockRows = statement.is("blocks", "one") ? 1 : number;
  return statement.blockRows == number ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

DRIVER SQLBindCol(SQLHSTMT handle, SQLUSMALLINT column, SQLSMALLINT, SQLPOINTER text, SQLLEN size,
                  SQLLEN* length) {
  of(handle).bound[column] = {text, size, length};
  return of(handle).is("blocks", "unbound") ? SQL_ERROR : SQL_SUCCESS;
}

DRIVER SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
  if (option == SQL_UNBIND)
    of(handle).bound.clear();
  return SQL_SUCCESS;
}

DRIVER SQLFetch(SQLHSTMT handle) {
  Statement& statement = of(handle);
  note("SQLFetch");
  statement.next += statement.fetched;
  statement.current = statement.next;
  if (statement.number("fetch") != 0)
    return static_cast<SQLRETURN>(statement.number("fetch"));
  if (statement.next == statement.rows.size()) {
    statement.fetched = 0;
    return SQL_NO_DATA;
  }
  if (!statement.bound.empty())
    return fetchBlock(&statement);
  statement.fetched = 1;
  return fails(statement, statement.next) ? SQL_ERROR : SQL_SUCCESS;
}

DRIVER SQLSetPos(SQLHSTMT handle, SQLSETPOSIROW row, SQLUSMALLINT, SQLUSMALLINT) {
  Statement& statement = of(handle);
  statement.current = statement.next + row - 1;
  return statement.is("blocks", "unpositioned") || fails(statement, statement.current) ? SQL_ERROR
                                                                                       : SQL_SUCCESS;
}

DRIVER SQLGetData(SQLHSTMT handle, SQLUSMALLINT column, SQLSMALLINT, SQLPOINTER target, SQLLEN size,
                  SQLLEN* length) {
  return value(of(handle), of(handle).current, column, {target, size, length});
}

DRIVER SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record, SQLCHAR* state,
                     SQLINTEGER* native, SQLCHAR* message, SQLSMALLINT size, SQLSMALLINT* length) {
  if (type != SQL_HANDLE_STMT)
    return SQL_NO_DATA;
  const int count = of(handle).number("messages");
  if (count >= 0 && record > count)
    return SQL_NO_DATA;
  std::memcpy(state, "42000", sizeof "42000");
  *native = record;
  const auto says = of(handle).words.find("says");
  const std::string text =
      says != of(handle).words.end() ? says->second : "message " + std::to_string(record);
  return give(text, message, size, length) ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

DRIVER SQLGetDiagField(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLSMALLINT, SQLPOINTER, SQLSMALLINT,
                       SQLSMALLINT*) {
  return SQL_NO_DATA;
}
