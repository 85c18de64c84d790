// A driver manager that answers as badly as the interface lets it: texts left untouched or without an end,
// lengths that are wrong or unknown, lists and diagnostics that never end, attributes and goodbyes refused.
// Parameters that nobody looks at are left out, which the calling convention forgives.
#include <cstring>

namespace {

constexpr short failed = -1, done = 0, doneWithInfo = 1;

struct Value {
  const char* bytes;
  std::size_t count;
  long length;
  short code;
};

/// By column. The first is the driver that does nothing at all.
const Value values[] = {
    {"", 0, 0, done},
    {"abc", 3, 3, done},
    {"abcdefgh", 8, 8, done},
    {"abcdef\xE2\x82", 8, -4, doneWithInfo},
    {"stale", 6, 0xFFFFFFFF, done},
    {"abcdef\xC3", 8, 7, done},
    {"abcdef\xC3", 8, 7, doneWithInfo},
    {"", 0, 0, failed},
};

short fill(void* text, char byte, short size) {
  std::memset(text, byte, static_cast<std::size_t>(size));
  return done;
}

}  // namespace

extern "C" {

short refuse() {
  return failed;
}
short agree() {
  return doneWithInfo;
}
short SQLFreeHandle() __attribute__((alias("refuse")));
short SQLSetEnvAttr() __attribute__((alias("agree")));
short SQLSetConnectAttr() __attribute__((alias("refuse")));
short SQLConnect() __attribute__((alias("agree")));
short SQLDisconnect() __attribute__((alias("refuse")));
short SQLExecDirect() __attribute__((alias("refuse")));
short SQLTables() __attribute__((alias("refuse")));
short SQLNumResultCols() __attribute__((alias("refuse")));
short SQLFetch() __attribute__((alias("agree")));

short SQLAllocHandle(short, void*, void** output) {
  static char object;
  *output = &object;
  return done;
}
short SQLDataSources(void*, unsigned short, char* name, short size) {
  return fill(name, 'n', size);
}
short SQLGetInfo(void*, unsigned short item, void* value, short size) {
  constexpr unsigned short identifierCase = 28;
  return item == identifierCase ? failed : fill(value, 'i', size);
}
short SQLDescribeCol(void*, unsigned short column, char* name, short size, short* length) {
  *length = 1000;
  return column == 1 ? fill(name, 'c', size) : column == 2 ? done : failed;
}
short SQLGetData(void*, unsigned short column, short, void* target, long, long* indicator) {
  const Value& value = values[column - 1];
  std::memcpy(target, value.bytes, value.count);
  *indicator = value.length;
  return value.code;
}
short SQLGetDiagRec(short, void*, short record, void*, void*, char* message, short size, short* length) {
  *length = record == 1 ? 7 : 30000;
  std::memcpy(message, "a\0b\nc\n", record == 1 ? 7 : 0);
  return record == 2 ? fill(message, 'm', size) : done;
}

}  // extern "C"
