#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "platform/services.h"

int _ossMemAlloc(void** block, void*, unsigned long size, unsigned int flags, const char*, unsigned int) {
  const unsigned long bytes = std::max(size, 1UL);  // a block of no bytes is still a block
  *block = flags == 1 ? std::calloc(1, bytes) : std::malloc(bytes);
  return *block != nullptr ? 0 : ENOMEM;
}

int _ossMemFree(void** block, unsigned long, unsigned long, const char*, unsigned int) {
  std::free(*block);
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
