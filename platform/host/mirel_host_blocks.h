#pragma once
/// Small blocks of memory, by size classes.
///
/// Texts are many, short, and of few sizes. Each class hands out again what was given back to it; new blocks
/// are cut off a slab, and slabs grow with what is in use. Slabs go back to the system when the process ends.
/// Every thread has its own blocks; one that is given back by another thread stays there.

/// The largest size that comes from here.
inline constexpr unsigned long kLargestSmallBlock = 512;

/// A block of `size` bytes, aligned to 16, contents undefined; null when there is no memory.
void* takeSmallBlock(unsigned long size);
/// `size` is the one that the block was taken with.
void giveSmallBlock(void* block, unsigned long size);
