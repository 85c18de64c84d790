#include "tarn/compare/tarn_compare_pairs.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "tarn/compare/tarn_compare_rising.h"

namespace tarn {

namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// The positions of OLD by name; those of one name in their order.
class Waiting {
 public:
  Waiting(const std::vector<Digest>& names, std::uint32_t from) : m_next(names.size(), kNone) {
    m_first.reserve(names.size() - from);
    for (auto at = static_cast<std::uint32_t>(names.size()); at-- > from;) {
      const auto [place, isNew] = m_first.try_emplace(names[at], at);
      if (!isNew) {
        m_next[at] = place->second;
        place->second = at;
      }
    }
  }

  std::optional<std::uint32_t> take(Digest name) {
    const auto place = m_first.find(name);
    if (place == m_first.end() || place->second == kNone) {
      return std::nullopt;
    }
    const std::uint32_t taken = place->second;
    place->second = m_next[taken];
    return taken;
  }

 private:
  std::unordered_map<Digest, std::uint32_t> m_first;
  std::vector<std::uint32_t> m_next;
};

/// How many stand at the same place on both sides, from the beginning: mostly all.
std::uint32_t sameBeginning(const std::vector<Digest>& before, const std::vector<Digest>& after) {
  const auto least = std::min(before.size(), after.size());
  const auto end = before.begin() + static_cast<std::ptrdiff_t>(least);
  return static_cast<std::uint32_t>(std::mismatch(before.begin(), end, after.begin()).first - before.begin());
}

/// `pairs` stand in the order of NEW; what is left of OLD comes before them.
std::vector<Pair> withTheRest(std::size_t countBefore, const std::vector<Pair>& pairs) {
  std::vector<bool> taken(countBefore);
  for (const Pair& pair : pairs) {
    if (pair.before) {
      taken[*pair.before] = true;
    }
  }
  std::vector<Pair> all;
  for (std::uint32_t at = 0; at < countBefore; ++at) {
    if (!taken[at]) {
      all.push_back({at, std::nullopt});
    }
  }
  all.insert(all.end(), pairs.begin(), pairs.end());
  return all;
}

}  // namespace

std::vector<Pair> pairsOf(const std::vector<Digest>& before, const std::vector<Digest>& after) {
  const std::uint32_t same = sameBeginning(before, after);
  Waiting waiting(before, same);
  std::vector<Pair> pairs;
  pairs.reserve(after.size());
  for (std::uint32_t at = 0; at < after.size(); ++at) {
    pairs.push_back({at < same ? std::optional(at) : waiting.take(after[at]), at});
  }
  return withTheRest(before.size(), pairs);
}

std::vector<Pair> movedApart(const std::vector<Pair>& pairs) {
  std::vector<std::uint32_t> order;
  for (const Pair& pair : pairs) {
    if (pair.before && pair.after) {
      order.push_back(*pair.before);
    }
  }
  const std::vector<bool> stays = longestRising(order);
  std::size_t countBefore = 0;
  std::vector<Pair> kept;
  std::size_t met = 0;
  for (const Pair& pair : pairs) {
    countBefore += pair.before ? 1 : 0;
    if (pair.after) {
      const bool together = pair.before && stays[met++];
      kept.push_back({together ? pair.before : std::nullopt, pair.after});
    }
  }
  return withTheRest(countBefore, kept);
}

}  // namespace tarn
