#include "platform/host/mirel_host_blocks.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "platform/host/mirel_host_pages.h"

namespace {

constexpr unsigned long kStep = 16;
constexpr unsigned long kFirstSlab = 64UL << 10;
constexpr unsigned long kLargestSlab = 32UL << 20;

struct UnusedBlock {
  UnusedBlock* next;
};

struct Pool {
  UnusedBlock* unused[kLargestSmallBlock / kStep + 1];  ///< by size, in steps
  char* slab;                                           ///< the part of it that is not cut yet
  unsigned long slabLeft;
  unsigned long slabSize;
};

thread_local Pool pool;

bool addSlab() {
  const unsigned long size = std::clamp(pool.slabSize * 2, kFirstSlab, kLargestSlab);
  void* const slab = std::aligned_alloc(size >= kLargeBlock ? kLargePage : kStep, size);
  if (slab == nullptr) {
    return false;
  }
  adviseLargePages(slab, size);
  pool.slab = static_cast<char*>(slab);
  pool.slabLeft = pool.slabSize = size;
  return true;
}

}  // namespace

void* takeSmallBlock(unsigned long size) {
  const unsigned long steps = (size + kStep - 1) / kStep;
  if (UnusedBlock* const block = pool.unused[steps]) {
    pool.unused[steps] = block->next;
    return block;
  }
  if (pool.slabLeft < steps * kStep && !addSlab()) {
    return nullptr;
  }
  pool.slabLeft -= steps * kStep;
  return std::exchange(pool.slab, pool.slab + steps * kStep);
}

void giveSmallBlock(void* block, unsigned long size) {
  UnusedBlock*& unused = pool.unused[(size + kStep - 1) / kStep];
  unused = new (block) UnusedBlock{unused};
}
