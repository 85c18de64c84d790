#include "tarn/compare/tarn_compare_naming.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "tarn/document/tarn_document_words.h"

namespace tarn {

namespace {

constexpr std::size_t kLooks = 16;  // at each value

/// A set of names that is emptied at once.
class Names {
 public:
  explicit Names(std::size_t atMost) {
    std::size_t size = 16;
    while (size < 2 * atMost) {
      size *= 2;
    }
    m_slots.resize(size);
  }

  void clear() { ++m_round; }

  /// Whether the name came from OLD (`false` for a new one), or nothing when this side has had it.
  std::optional<bool> add(Digest name, bool fromNew) {
    std::size_t at = name & (m_slots.size() - 1);
    while (m_slots[at].round == m_round && m_slots[at].name != name) {
      at = (at + 1) & (m_slots.size() - 1);
    }
    Slot& slot = m_slots[at];
    const bool known = slot.round == m_round;
    if (known && slot.fromNew >= fromNew) {
      return std::nullopt;
    }
    slot = {name, m_round, fromNew};
    return known;
  }

 private:
  struct Slot {
    Digest name = 0;
    std::uint32_t round = 0;
    bool fromNew = false;
  };
  std::vector<Slot> m_slots;
  std::uint32_t m_round = 0;
};

/// Tries sets of columns, as long as it may look.
class Trial {
 public:
  explicit Trial(const Rows& rows)
      : m_rows(rows), m_names(rows.count()), m_looks(kLooks * rows.count() * rows.columns().size()) {}

  bool exhausted() const { return m_looks == 0; }

  /// How many rows of both sides meet by these columns; nothing when a name occurs twice on one side.
  std::optional<std::size_t> meet(const ColumnSet& set) {
    std::size_t met = 0;
    m_names.clear();
    for (std::size_t row = 0; row < m_rows.count(); ++row) {
      m_looks -= std::min(m_looks, set.size());
      const std::optional<bool> known = m_names.add(nameOf(m_rows, row, set), row >= m_rows.before());
      if (!known || exhausted()) {
        return std::nullopt;
      }
      met += *known ? 1 : 0;
    }
    return met;
  }

 private:
  const Rows& m_rows;
  Names m_names;
  std::size_t m_looks;
};

/// The set after this one, of the same size, in the order of columns.
bool advance(ColumnSet& set, std::size_t columns) {
  for (std::size_t at = set.size(); at-- > 0;) {
    if (set[at] < columns - (set.size() - at)) {
      std::iota(set.begin() + static_cast<std::ptrdiff_t>(at), set.end(), set[at] + 1);
      return true;
    }
  }
  return false;
}

struct Candidate {
  ColumnSet set;
  std::size_t met = 0;
};

/// Of the sets of one size the one by which most rows meet.
Candidate bestOf(const Rows& rows, std::size_t size, Trial& trial) {
  Candidate best;
  ColumnSet set(size);
  std::iota(set.begin(), set.end(), 0);
  do {
    const std::optional<std::size_t> met = trial.meet(set);
    if (met && (best.set.empty() || *met > best.met)) {
      best = {set, *met};
    }
  } while (!trial.exhausted() && advance(set, rows.columns().size()));
  return best;
}

ColumnSet inferred(const Rows& rows, Trial& trial) {
  const std::size_t wanted = (std::min(rows.before(), rows.count() - rows.before()) + 1) / 2;
  Candidate best;
  for (std::size_t size = 1; size <= rows.columns().size() && !trial.exhausted(); ++size) {
    const Candidate found = bestOf(rows, size, trial);
    if (!found.set.empty() && (best.set.empty() || found.met > best.met)) {
      best = found;
    }
    if (!best.set.empty() && best.met >= wanted) {
      break;
    }
  }
  return best.set;
}

/// The numbers of these columns; nothing when one is missing.
ColumnSet numbersOf(const Rows& rows, const std::vector<std::string>& names) {
  ColumnSet set;
  for (const std::string& name : names) {
    const auto found = std::find_if(rows.columns().begin(), rows.columns().end(),
                                    [&](std::string_view column) { return sameWord(column, name); });
    if (found == rows.columns().end()) {
      return {};
    }
    set.push_back(static_cast<std::size_t>(found - rows.columns().begin()));
  }
  return set;
}

ColumnSet objectified(const Rows& rows) {
  const ColumnSet told = numbersOf(rows, {"TARN_OBJECTIFY"});
  return told.empty() ? told : numbersOf(rows, {std::string(rows.text(0, told.front()))});
}

}  // namespace

Digest nameOf(const Rows& rows, std::size_t row, const ColumnSet& columns) {
  Digest name = rows.cell(row, columns.front());
  for (std::size_t at = 1; at < columns.size(); ++at) {
    name = digestOf(name, rows.cell(row, columns[at]));
  }
  return name;
}

ColumnSet namingColumns(const Rows& rows, const std::vector<std::string>& known) {
  if (rows.columns().empty()) {
    return {};
  }
  Trial trial(rows);
  for (const ColumnSet& told : {numbersOf(rows, known), objectified(rows)}) {
    if (!told.empty() && trial.meet(told)) {
      return told;
    }
  }
  return inferred(rows, trial);
}

}  // namespace tarn
