#include "tarn/compare/tarn_compare_lines.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <unordered_map>

#include "tarn/compare/tarn_compare_digest.h"
#include "tarn/compare/tarn_compare_myers.h"
#include "tarn/compare/tarn_compare_rising.h"

namespace tarn {

namespace {

constexpr int kFrames = 32;       // within one another
constexpr int kDifferences = 64;  // in a stretch without a frame

using Number = std::uint32_t;
using Offset = std::ptrdiff_t;

/// Stretches of both sides.
struct Stretch {
  std::size_t before, beforeEnd, after, afterEnd;
};

/// A line of OLD that stays as a line of NEW.
struct Meeting {
  std::size_t before, after;
};

class LineDiff {
 public:
  LineDiff(const std::vector<std::string_view>& before, const std::vector<std::string_view>& after)
      : m_before(numbersOf(before)), m_after(numbersOf(after)), m_seen(m_numbers.size()) {
    m_gone.resize(before.size());
    m_come.resize(after.size());
    solve({0, before.size(), 0, after.size()}, 0);
  }

  std::vector<Hunk> hunks() const;

 private:
  /// Where a line stands in a stretch, and how often.
  struct Seen {
    std::size_t before = 0, countBefore = 0, countAfter = 0;
  };

  std::vector<Number> numbersOf(const std::vector<std::string_view>& lines);
  void solve(Stretch stretch, int depth);
  void trim(Stretch& stretch) const;
  std::vector<Meeting> frame(const Stretch& stretch);
  bool align(const Stretch& stretch);
  void markAll(const Stretch& stretch);

  std::unordered_map<Digest, Number> m_numbers;
  std::vector<Number> m_before, m_after;
  std::vector<Seen> m_seen;  ///< by number
  std::vector<bool> m_gone, m_come;
};

/// Equal lines have one number.
std::vector<Number> LineDiff::numbersOf(const std::vector<std::string_view>& lines) {
  std::vector<Number> numbers;
  numbers.reserve(lines.size());
  for (const std::string_view line : lines) {
    const auto next = static_cast<Number>(m_numbers.size());
    numbers.push_back(m_numbers.try_emplace(digestOf(line), next).first->second);
  }
  return numbers;
}

void LineDiff::solve(Stretch stretch, int depth) {
  trim(stretch);
  if (stretch.before == stretch.beforeEnd || stretch.after == stretch.afterEnd) {
    markAll(stretch);
    return;
  }
  const std::vector<Meeting> met = depth < kFrames ? frame(stretch) : std::vector<Meeting>();
  if (met.empty()) {
    if (!align(stretch)) {
      markAll(stretch);
    }
    return;
  }
  Stretch between = stretch;
  for (const Meeting& meeting : met) {
    solve({between.before, meeting.before, between.after, meeting.after}, depth + 1);
    between.before = meeting.before + 1;
    between.after = meeting.after + 1;
  }
  solve(between, depth + 1);
}

/// Leaves out what both begin and end with.
void LineDiff::trim(Stretch& stretch) const {
  while (stretch.before < stretch.beforeEnd && stretch.after < stretch.afterEnd &&
         m_before[stretch.before] == m_after[stretch.after]) {
    ++stretch.before;
    ++stretch.after;
  }
  while (stretch.before < stretch.beforeEnd && stretch.after < stretch.afterEnd &&
         m_before[stretch.beforeEnd - 1] == m_after[stretch.afterEnd - 1]) {
    --stretch.beforeEnd;
    --stretch.afterEnd;
  }
}

/// The lines that occur once on each side and keep their order.
std::vector<Meeting> LineDiff::frame(const Stretch& stretch) {
  for (std::size_t at = stretch.before; at < stretch.beforeEnd; ++at) {
    m_seen[m_before[at]] = {at, m_seen[m_before[at]].countBefore + 1, 0};
  }
  for (std::size_t at = stretch.after; at < stretch.afterEnd; ++at) {
    ++m_seen[m_after[at]].countAfter;
  }
  std::vector<Meeting> both;
  std::vector<Number> order;
  for (std::size_t at = stretch.after; at < stretch.afterEnd; ++at) {
    const Seen& seen = m_seen[m_after[at]];
    if (seen.countBefore == 1 && seen.countAfter == 1) {
      both.push_back({seen.before, at});
      order.push_back(static_cast<Number>(seen.before));
    }
  }
  for (std::size_t at = stretch.before; at < stretch.beforeEnd; ++at) {
    m_seen[m_before[at]] = {};
  }
  for (std::size_t at = stretch.after; at < stretch.afterEnd; ++at) {
    m_seen[m_after[at]] = {};
  }
  const std::vector<bool> stays = longestRising(order);
  std::vector<Meeting> met;
  for (std::size_t at = 0; at < both.size(); ++at) {
    if (stays[at]) {
      met.push_back(both[at]);
    }
  }
  return met;
}

/// False when there are too many differences.
bool LineDiff::align(const Stretch& stretch) {
  const std::span before = std::span(m_before).subspan(stretch.before, stretch.beforeEnd - stretch.before);
  const std::span after = std::span(m_after).subspan(stretch.after, stretch.afterEnd - stretch.after);
  const std::optional<Marks> marks = fewestDifferences(before, after, kDifferences);
  if (marks) {
    std::copy(marks->gone.begin(), marks->gone.end(), m_gone.begin() + static_cast<Offset>(stretch.before));
    std::copy(marks->come.begin(), marks->come.end(), m_come.begin() + static_cast<Offset>(stretch.after));
  }
  return marks.has_value();
}

void LineDiff::markAll(const Stretch& stretch) {
  std::fill(m_gone.begin() + static_cast<Offset>(stretch.before),
            m_gone.begin() + static_cast<Offset>(stretch.beforeEnd), true);
  std::fill(m_come.begin() + static_cast<Offset>(stretch.after),
            m_come.begin() + static_cast<Offset>(stretch.afterEnd), true);
}

std::vector<Hunk> LineDiff::hunks() const {
  std::vector<Hunk> hunks;
  std::size_t before = 0;
  std::size_t after = 0;
  while (before < m_gone.size() || after < m_come.size()) {
    Hunk hunk = {before, 0, after, 0};
    for (; before < m_gone.size() && m_gone[before]; ++before) {
      ++hunk.gone;
    }
    for (; after < m_come.size() && m_come[after]; ++after) {
      ++hunk.come;
    }
    if (hunk.gone + hunk.come > 0) {
      hunks.push_back(hunk);
    } else {  // a line that stays stands on both sides
      ++before;
      ++after;
    }
  }
  return hunks;
}

}  // namespace

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  lines.push_back(text);
  return lines;
}

std::vector<Hunk> hunksOf(const std::vector<std::string_view>& before,
                          const std::vector<std::string_view>& after) {
  return LineDiff(before, after).hunks();
}

}  // namespace tarn
