#include "platform/host/services/mirel_host_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

namespace {

struct Block {
  unsigned char* bytes;
  unsigned long size;
  unsigned char content;

  bool holds(unsigned char expected) const {
    return std::all_of(bytes, bytes + size, [=](unsigned char byte) { return byte == expected; });
  }
};

/// Blocks of all kinds are taken and given back in any order, also by another thread than took them.
std::vector<Block> exercise(unsigned int seed, std::vector<Block> blocks) {
  std::mt19937 random(seed);
  for (int round = 0; round < 20'000; ++round) {
    if (blocks.size() < 1000 && random() % 3 > 0) {
      const unsigned long size = random() % 200 == 0 ? random() % (8UL << 20) : random() % 600;
      const bool zeroed = random() % 2 == 0;
      Block block{static_cast<unsigned char*>(takeBlock(size, zeroed)), size,
                  static_cast<unsigned char>(random())};
      EXPECT_EQ(0U, reinterpret_cast<unsigned long>(block.bytes) % 16);
      EXPECT_TRUE(!zeroed || block.holds(0)) << size;
      std::fill_n(block.bytes, size, block.content);
      blocks.push_back(block);
    } else if (!blocks.empty()) {
      std::swap(blocks[random() % blocks.size()], blocks.back());
      EXPECT_TRUE(blocks.back().holds(blocks.back().content)) << blocks.back().size;
      giveBlock(blocks.back().bytes);
      blocks.pop_back();
    }
  }
  return blocks;
}

TEST(Heap, BlocksKeepTheirContentsAndAreUsedAgain) {
  std::vector<Block> left[3];
  for (unsigned int pass = 0; pass < 3; ++pass) {
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < 3; ++i)
      threads.emplace_back([&, i] { left[i] = exercise(pass * 3 + i, std::move(left[i])); });
    for (std::thread& thread : threads)
      thread.join();
    std::rotate(left, left + 1, left + 3);
  }
  for (const std::vector<Block>& blocks : left)
    for (const Block& block : blocks)
      giveBlock(block.bytes);
  EXPECT_EQ(nullptr, takeBlock(~0UL, false));
  giveBlock(nullptr);
}

#ifdef MIREL_CHECKED_MEMORY
TEST(HeapDeathTest, CheckersSeeWhereBlocksEnd) {
  for (const unsigned long size : {1UL, 600UL, 5UL << 20}) {
    auto* const block = static_cast<volatile char*>(takeBlock(size, false));
    EXPECT_DEATH(block[size + 15] = 1, "heap-buffer-overflow") << size;
    giveBlock(const_cast<char*>(block));
  }
}
#endif

}  // namespace
