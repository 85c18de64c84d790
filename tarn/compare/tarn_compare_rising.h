#pragma once
/// The longest subsequence that rises, in n log n steps (patience sorting, Schensted 1961).

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tarn {

/// For each number, all different, whether it belongs to the subsequence.
inline std::vector<bool> longestRising(const std::vector<std::uint32_t>& numbers) {
  std::vector<std::size_t> tops;  // where the best subsequence of each length ends
  std::vector<std::size_t> below(numbers.size());
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    const auto pile =
        std::lower_bound(tops.begin(), tops.end(), numbers[at],
                         [&](std::size_t top, std::uint32_t number) { return numbers[top] < number; });
    below[at] = pile == tops.begin() ? at : *(pile - 1);
    if (pile == tops.end()) {
      tops.push_back(at);
    } else {
      *pile = at;
    }
  }
  std::vector<bool> belongs(numbers.size());
  for (std::size_t left = tops.size(), at = left == 0 ? 0 : tops.back(); left > 0; --left, at = below[at]) {
    belongs[at] = true;
  }
  return belongs;
}

}  // namespace tarn
