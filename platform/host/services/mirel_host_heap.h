#pragma once
/// The memory of the program: what `_ossMemAlloc` and `operator new` hand out.
///
/// A document is made of many short texts and nodes of few sizes, and of a few very large texts. Small blocks
/// come from pages of blocks of one size, which are filled from one end to the other, and again when all of
/// their blocks came back; pages stay until the process ends. Large blocks are malloc's.

// Checkers of memory have to see every block by itself, and bring an operator new of their own.
#if defined(__SANITIZE_ADDRESS__)
#define MIREL_CHECKED_MEMORY
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define MIREL_CHECKED_MEMORY
#endif
#endif

/// Has malloc keep what texts of a medium size were made in, instead of giving it back page by page to take
/// it again, and join neighbours at once: a driver gives the values of a result back all together, which
/// takes half the time then. Once, before large blocks are taken.
void prepareHeap();

/// A block of `size` bytes, aligned to 16, zero-filled if asked for; null when there is no memory.
void* takeBlock(unsigned long size, bool zeroed);
/// Takes a block back; null is none.
void giveBlock(void* block);
