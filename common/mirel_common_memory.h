#pragma once
/// Blocks of text from the platform allocator, tagged as the text type's own.

#include "platform/services.h"

/// Whether memory has run out since the run began. A text that was lost for want of memory reads as the empty
/// text, so what was made of it may look whole and is not: nothing of it may leave the process.
inline bool memoryRanOut = false;

/// A block of `size` bytes that one can do without; zero-filled for flag 1; null when there is none. `line`
/// tags the request.
inline char* tryAllocateText(unsigned long size, unsigned int flag, unsigned int line) {
  void* block = nullptr;
  const bool taken = _ossMemAlloc(&block, nullptr, size, flag, "mirel_string", line) == 0;
  return taken ? static_cast<char*>(block) : nullptr;
}

/// The same for a block that is needed: without it memory has run out.
inline char* allocateText(unsigned long size, unsigned int flag, unsigned int line) {
  char* const block = tryAllocateText(size, flag, line);
  memoryRanOut = memoryRanOut || block == nullptr;
  return block;
}

/// Gives a block back and sets the pointer to null; whether the platform took it.
inline bool releaseText(char*& text) {
  void* block = text;
  text = nullptr;
  return _ossMemFree(&block, 0, 0, "mirel_string", 389) == 0;
}
