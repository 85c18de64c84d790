// The program's operator new: nodes and containers come from the same blocks as texts do. In a release, which
// has the C++ runtime linked in, it is the program's only: database drivers keep their own.

#include <new>

#include "platform/host/services/mirel_host_heap.h"

#ifndef MIREL_CHECKED_MEMORY

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
