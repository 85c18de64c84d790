#pragma once
/// Large blocks on large pages (transparent huge pages, madvise(2)): they are faulted in by the megabyte.
/// Without large pages on the host they are ordinary blocks.

inline constexpr unsigned long kLargePage = 2UL << 20;
/// From this size on a block is worth large pages.
inline constexpr unsigned long kLargeBlock = 2 * kLargePage;

/// A block of malloc's of at least `size` bytes that begins and ends between large pages; null when there is
/// no memory. Its contents are undefined; free(3) takes it back.
void* takeLargePages(unsigned long size);
