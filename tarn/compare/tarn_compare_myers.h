#pragma once
/// The fewest differences of two sequences: the greedy algorithm of Myers (1986), given up early. Its cost is
/// (length + differences) x differences.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarn {

/// Which went from one side, and which came on the other.
struct Marks {
  std::vector<bool> gone, come;
};

/// Nothing when there are more than `most` differences.
std::optional<Marks> fewestDifferences(std::span<const std::uint32_t> before,
                                       std::span<const std::uint32_t> after, int most);

}  // namespace tarn
