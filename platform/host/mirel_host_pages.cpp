#include "platform/host/mirel_host_pages.h"

#include <sys/mman.h>
#include <unistd.h>

void adviseLargePages(void* block, unsigned long size) {
  if (size < kLargeBlock) {
    return;
  }
  const auto page = static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
  const unsigned long offset = -reinterpret_cast<unsigned long>(block) % page;
  madvise(static_cast<char*>(block) + offset, size - offset, MADV_HUGEPAGE);
}
