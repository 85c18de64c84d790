#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "platform/host/services/mirel_host_heap.h"
#include "platform/services.h"

int _ossMemAlloc(void** block, void*, unsigned long size, unsigned int flags, const char*, unsigned int) {
  *block = takeBlock(size, flags == 1);
  return *block != nullptr ? 0 : ENOMEM;
}

int _ossMemFree(void** block, unsigned long, unsigned long, const char*, unsigned int) {
  giveBlock(*block);
  *block = nullptr;
  return 0;
}

int ossSnprintf(char* buffer, unsigned long size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer, size, format, arguments);
  va_end(arguments);
  return length;
}
