#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/host/mirel_host_blocks.h"
#include "platform/host/mirel_host_pages.h"
#include "platform/services.h"

namespace {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

/// Checkers of memory have to see every block by itself.
#ifdef __SANITIZE_ADDRESS__
constexpr unsigned long kSmall = 0;
#else
constexpr unsigned long kSmall = kLargestSmallBlock;
#endif

/// Stands before every block.
struct Header {
  unsigned long size;  ///< of both together
};

void* takeLargeBlock(unsigned long size, bool zeroed) {
  void* const block = zeroed ? std::calloc(1, size) : std::malloc(size);
  if (block != nullptr) {
    adviseLargePages(block, size);
  }
  return block;
}

void* takeBlock(unsigned long size, bool zeroed) {
  if (size > kSmall) {
    return takeLargeBlock(size, zeroed);
  }
  void* const block = takeSmallBlock(size);
  if (zeroed && block != nullptr) {
    memset(block, 0, size);
  }
  return block;
}

}  // namespace

int _ossMemAlloc(void** block, void*, unsigned long size, unsigned int flags, const char*, unsigned int) {
  *block = nullptr;
  const unsigned long whole = size + sizeof(Header);
  void* const taken = whole < size ? nullptr : takeBlock(whole, flags == 1);
  if (taken == nullptr) {
    return ENOMEM;
  }
  auto* header = static_cast<Header*>(taken);
  header->size = whole;
  *block = header + 1;
  return 0;
}

int _ossMemFree(void** block, unsigned long, unsigned long, const char*, unsigned int) {
  if (*block == nullptr) {
    return 0;
  }
  Header* const header = static_cast<Header*>(*block) - 1;
  if (header->size > kSmall) {
    std::free(header);
  } else {
    giveSmallBlock(header, header->size);
  }
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
