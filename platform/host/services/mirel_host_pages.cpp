#include "platform/host/services/mirel_host_pages.h"

#include <sys/mman.h>

#include <cstdlib>

void* takeLargePages(unsigned long size) {
  const unsigned long whole = (size + kLargePage - 1) / kLargePage * kLargePage;
  void* const block = std::aligned_alloc(kLargePage, whole);
  if (block != nullptr) {
    madvise(block, whole, MADV_HUGEPAGE);
  }
  return block;
}
