// The program's operator new: nodes and containers come from the same blocks as texts do. Only the program's;
// database drivers keep their own.

#include <new>

#include "platform/host/mirel_host_heap.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif

// A checker of memory brings its own.
#ifndef __SANITIZE_ADDRESS__

void* operator new(std::size_t size) {
  void* const block = takeBlock(size, false);
  if (block == nullptr) {
    throw std::bad_alloc();  // what the standard asks of this function
  }
  return block;
}

void operator delete(void* block) noexcept {
  giveBlock(block);
}

void operator delete(void* block, std::size_t) noexcept {
  giveBlock(block);
}

#endif
