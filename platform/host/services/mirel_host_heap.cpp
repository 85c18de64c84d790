#include "platform/host/services/mirel_host_heap.h"

#include <malloc.h>
#include <sys/single_threaded.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <utility>

#include "platform/host/services/mirel_host_pages.h"

namespace {

/// Sizes are those of blocks with their headers. Checkers of memory have to see every block by itself, and
/// where it ends.
#ifdef MIREL_CHECKED_MEMORY
constexpr unsigned long kLargestSmall = 0;
constexpr bool kLargePages = false;
#else
constexpr unsigned long kLargestSmall = 512;
constexpr bool kLargePages = true;
#endif
constexpr unsigned long kStep = 16;
constexpr unsigned long kPage = 64UL << 10;
constexpr unsigned long kFirstSlab = 4 * kPage;
constexpr unsigned long kLargestSlab = 32UL << 20;

/// Stands before every block, which begins at a multiple of 16.
struct Header {
  unsigned long size;
};
/// So this stands before every header.
constexpr unsigned long kPadding = kStep - sizeof(Header);

struct Unused {
  Unused* next;
};

/// Begins at a multiple of its size; blocks of one size follow.
struct Page {
  Page* next;      ///< with room for blocks of the same size
  Unused* unused;  ///< blocks that came back
  char* rest;      ///< what was not cut into blocks yet
  unsigned long used;

  char* begin() { return reinterpret_cast<char*>(this) + sizeof(Page) + kPadding; }
  bool hasRoom(unsigned long size) {
    return unused != nullptr ||
           size <= static_cast<unsigned long>(reinterpret_cast<char*>(this) + kPage - rest);
  }
};

struct Heap {
  Page* withRoom[kLargestSmall / kStep + 1];  ///< by size, in steps
  char* slab;                                 ///< what was not cut into pages yet
  unsigned long slabLeft;
  unsigned long slabSize;
  std::mutex mutex;
};

constinit Heap heap{};

/// Holds the heap for one thread, when there are more.
class HeapLock {
 public:
  HeapLock() : m_locked(!__libc_single_threaded) {
    if (m_locked) {
      heap.mutex.lock();
    }
  }
  ~HeapLock() {
    if (m_locked) {
      heap.mutex.unlock();
    }
  }
  HeapLock(const HeapLock&) = delete;
  HeapLock& operator=(const HeapLock&) = delete;

 private:
  const bool m_locked;
};

void* takeSlab(unsigned long size) {
  return size < kLargeBlock ? std::aligned_alloc(kPage, size) : takeLargePages(size);
}

bool addSlab() {
  unsigned long size = std::clamp(heap.slabSize * 2, kFirstSlab, kLargestSlab);
  void* slab = takeSlab(size);
  while (slab == nullptr && size > kPage) {  // little is left; a page will do
    size /= 2;
    slab = takeSlab(size);
  }
  if (slab == nullptr) {
    return false;
  }
  heap.slab = static_cast<char*>(slab);
  heap.slabLeft = heap.slabSize = size;
  return true;
}

Page* addPage() {
  if (heap.slabLeft == 0 && !addSlab()) {
    return nullptr;
  }
  heap.slabLeft -= kPage;
  Page* const page = new (std::exchange(heap.slab, heap.slab + kPage)) Page{};
  page->rest = page->begin();
  return page;
}

void* takeSmall(unsigned long size) {
  const HeapLock lock;
  Page*& withRoom = heap.withRoom[size / kStep];
  if (withRoom == nullptr && (withRoom = addPage()) == nullptr) {
    return nullptr;
  }
  Page* const page = withRoom;
  ++page->used;
  void* const block = page->unused != nullptr
                          ? std::exchange(page->unused, page->unused->next)
                          : static_cast<void*>(std::exchange(page->rest, page->rest + size));
  if (!page->hasRoom(size)) {
    withRoom = page->next;
  }
  return block;
}

void giveSmall(void* block, unsigned long size) {
  const HeapLock lock;
  Page* const page = reinterpret_cast<Page*>(reinterpret_cast<unsigned long>(block) / kPage * kPage);
  const bool wasFull = !page->hasRoom(size);
  if (--page->used == 0) {
    page->unused = nullptr;
    page->rest = page->begin();
  } else {
    page->unused = new (block) Unused{page->unused};
  }
  if (wasFull) {
    page->next = std::exchange(heap.withRoom[size / kStep], page);
  }
}

void* takeMalloced(unsigned long size, bool zeroed) {
  if (!kLargePages || size < kLargeBlock) {
    return zeroed ? std::calloc(1, size) : std::malloc(size);
  }
  void* const block = takeLargePages(size);
  return block == nullptr || !zeroed ? block : memset(block, 0, size);
}

void* takeLarge(unsigned long size, bool zeroed) {
  void* const block = takeMalloced(size + kPadding, zeroed);
  return block == nullptr ? nullptr : static_cast<char*>(block) + kPadding;
}

void giveLarge(void* header) {
  std::free(static_cast<char*>(header) - kPadding);
}

}  // namespace

void prepareHeap() {
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  mallopt(M_TRIM_THRESHOLD, 2 * kLargeBlock);
  mallopt(M_MXFAST, 0);
}

void* takeBlock(unsigned long size, bool zeroed) {
  if (size > ~0UL / 2) {
    return nullptr;
  }
  const unsigned long whole = (size + sizeof(Header) + kStep - 1) / kStep * kStep;
  void* const taken = whole <= kLargestSmall ? takeSmall(whole) : takeLarge(whole, zeroed);
  if (taken == nullptr) {
    return nullptr;
  }
  auto* const header = new (taken) Header{whole};
  if (zeroed && whole <= kLargestSmall) {
    memset(header + 1, 0, size);
  }
  return header + 1;
}

void giveBlock(void* block) {
  if (block == nullptr) {
    return;
  }
  Header* const header = static_cast<Header*>(block) - 1;
  const unsigned long size = header->size;
  if (size <= kLargestSmall) {
    giveSmall(header, size);
  } else {
    giveLarge(header);
  }
}
