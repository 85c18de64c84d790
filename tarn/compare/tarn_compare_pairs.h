#pragma once
/// Which members or elements of two containers belong together: those of the same name, the first with the
/// first where a name occurs several times. Never by position.

#include <cstdint>
#include <optional>
#include <vector>

#include "tarn/compare/tarn_compare_digest.h"

namespace tarn {

/// Positions on both sides; one is missing for what only the other side has.
struct Pair {
  std::optional<std::uint32_t> before, after;
};

/// What only OLD has comes first, in its order, then everything of NEW in its order.
std::vector<Pair> pairsOf(const std::vector<Digest>& before, const std::vector<Digest>& after);

/// Parts the fewest pairs, so that those that are left stand in the same order on both sides: what moved went
/// at one place and came at another. In the order of `pairsOf`.
std::vector<Pair> movedApart(const std::vector<Pair>& pairs);

}  // namespace tarn
