#pragma once
/// Large pages (transparent huge pages, madvise(2)) for large blocks.

inline constexpr unsigned long kLargePage = 2UL << 20;
/// From this size on a block is worth large pages: they are faulted in by the megabyte.
inline constexpr unsigned long kLargeBlock = 2 * kLargePage;

/// Advises the system to use them for a block of at least that size that was not touched yet; smaller ones
/// are left alone. Without large pages on the host nothing changes.
void adviseLargePages(void* block, unsigned long size);
