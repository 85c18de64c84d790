#pragma once
/// What changed in a listing, line by line: patience diff (Bram Cohen). Lines that occur once on each side
/// and keep their order are the frame; between two of them it goes on in the same way, and where no such line
/// is left by the greedy algorithm of Myers (1986), up to 64 differences a stretch. What is more different
/// than that went and came as a whole. So the cost is n log n at worst: at most 32 frames within one another,
/// of n log n each, and 64 n.

#include <cstddef>
#include <string_view>
#include <vector>

namespace tarn {

/// Lines of OLD from `before`, `gone` of them, in whose place `come` lines of NEW from `after` stand. Lines
/// count from 0.
struct Hunk {
  std::size_t before = 0, gone = 0, after = 0, come = 0;
};

/// A text's lines, without their line feeds; a text has one more of them than line feeds.
std::vector<std::string_view> linesOf(std::string_view text);

/// In order, never touching each other.
std::vector<Hunk> hunksOf(const std::vector<std::string_view>& before,
                          const std::vector<std::string_view>& after);

}  // namespace tarn
