#pragma once
/// Blocks of text from the platform allocator, tagged as the text type's own, and what is done where memory
/// runs out.
///
/// A text that was lost for want of memory reads as the empty text, so what is made of it may look whole and
/// is not. Who hands something on asks a `MemoryWatch` that saw it made:
///
///     const MemoryWatch memory;
///     MemoryWatch::during([&] { ... });
///     if (memory.ranOut()) { ...; memory.tell(); }

#include <new>

#include "common/mirel_common_console.h"
#include "platform/services.h"

/// How often memory ran out without being told.
inline unsigned long memoryLosses = 0;

/// Sees whether memory runs out from the moment it is made.
class MemoryWatch {
 public:
  bool ranOut() const { return memoryLosses != m_before; }

  /// Does `work`; where memory runs out for an object, it ends there.
  template <class Work>
  static void during(const Work& work) {
    try {
      work();
    } catch (const std::bad_alloc&) {
      ++memoryLosses;
    }
  }

  /// Tells it on standard error. Watches made before need not care any more.
  void tell() const {
    complain("out of memory");
    memoryLosses = m_before;
  }

 private:
  unsigned long m_before = memoryLosses;
};

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
  memoryLosses += block == nullptr ? 1 : 0;
  return block;
}

/// Gives a block back and sets the pointer to null; whether the platform took it.
inline bool releaseText(char*& text) {
  void* block = text;
  text = nullptr;
  return _ossMemFree(&block, 0, 0, "mirel_string", 389) == 0;
}
