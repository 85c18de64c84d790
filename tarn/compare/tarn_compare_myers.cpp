#include "tarn/compare/tarn_compare_myers.h"

#include <cstddef>

namespace tarn {

namespace {

using Numbers = std::span<const std::uint32_t>;
using Steps = std::ptrdiff_t;

/// How far each diagonal got: x counts OLD, y = x - diagonal counts NEW.
class Frontier {
 public:
  explicit Frontier(Steps most) : m_middle(most + 1), m_reached(static_cast<std::size_t>(2 * most + 3)) {}

  Steps& operator[](Steps diagonal) { return m_reached[static_cast<std::size_t>(m_middle + diagonal)]; }

  /// Whether the best way to the diagonal takes an element of NEW, in a round of `most` differences.
  bool comes(Steps diagonal, Steps most) {
    return diagonal == -most || (diagonal != most && (*this)[diagonal - 1] < (*this)[diagonal + 1]);
  }

 private:
  Steps m_middle;
  std::vector<Steps> m_reached;
};

/// Along a diagonal as long as both sides are equal.
Steps slide(Numbers before, Numbers after, Steps x, Steps diagonal) {
  auto atBefore = static_cast<std::size_t>(x);
  auto atAfter = static_cast<std::size_t>(x - diagonal);
  while (atBefore < before.size() && atAfter < after.size() && before[atBefore] == after[atAfter]) {
    ++atBefore;
    ++atAfter;
  }
  return static_cast<Steps>(atBefore);
}

/// From the end through all rounds, each of which made one difference. `rounds` are the frontiers before
/// them.
Marks wayBack(std::vector<Frontier>& rounds, std::size_t countBefore, std::size_t countAfter) {
  Marks marks = {std::vector<bool>(countBefore), std::vector<bool>(countAfter)};
  auto x = static_cast<Steps>(countBefore);
  auto y = static_cast<Steps>(countAfter);
  for (auto round = static_cast<Steps>(rounds.size()) - 1; round > 0; --round) {
    Frontier& frontier = rounds[static_cast<std::size_t>(round)];
    const Steps diagonal = x - y;
    const bool comes = frontier.comes(diagonal, round);
    const Steps from = diagonal + (comes ? 1 : -1);
    x = frontier[from];
    y = x - from;
    (comes ? marks.come : marks.gone)[static_cast<std::size_t>(comes ? y : x)] = true;
  }
  return marks;
}

}  // namespace

std::optional<Marks> fewestDifferences(Numbers before, Numbers after, int most) {
  const auto endBefore = static_cast<Steps>(before.size());
  const auto endAfter = static_cast<Steps>(after.size());
  Frontier frontier(most);
  std::vector<Frontier> rounds;
  for (Steps round = 0; round <= most; ++round) {
    rounds.push_back(frontier);
    for (Steps diagonal = -round; diagonal <= round; diagonal += 2) {
      const bool comes = frontier.comes(diagonal, round);
      const Steps begin = comes ? frontier[diagonal + 1] : frontier[diagonal - 1] + 1;
      const Steps x = round == 0 ? slide(before, after, 0, 0) : slide(before, after, begin, diagonal);
      frontier[diagonal] = x;
      if (x >= endBefore && x - diagonal >= endAfter) {
        return wayBack(rounds, before.size(), after.size());
      }
    }
  }
  return std::nullopt;
}

}  // namespace tarn
