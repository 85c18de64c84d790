#pragma once
/// Blocks of text from the platform allocator, tagged as the text type's own.

#include "platform/services.h"

/// Whether memory has run out since the run began. A text that was lost for want of memory reads as the empty
/// text, so what was made of it may look whole and is not: nothing of it may leave the process.
inline bool memoryRanOut = false;

/// A block of `size` bytes; zero-filled for flag 1; null when there is none. `line` tags the request.
inline char* allocateText(unsigned long size, unsigned int flag, unsigned int line) {
  void* block = nullptr;
  if (_ossMemAlloc(&block, nullptr, size, flag, "mirel_string", line) != 0) {
    memoryRanOut = true;
    return nullptr;
  }
  return static_cast<char*>(block);
}

/// Gives a block back and sets the pointer to null; whether the platform took it.
inline bool releaseText(char*& text) {
  void* block = text;
  text = nullptr;
  return _ossMemFree(&block, 0, 0, "mirel_string", 389) == 0;
}
