#pragma once
/// What changed from one document to another. Everything that shows or keeps differences stands on this:
/// lines,
/// `--json`, pages, histories.
///
///     const Comparison comparison(before, after, facts, {});
///     for (const Change& change : comparison.changes()) {
///       ... pointerOf(comparison.route(change)) ... change.before ... change.after ...
///     }
///
/// Members are matched by name, rows by the columns that name them (tarn_compare_naming.h), other elements by
/// their whole value; never by position. Facts that change by themselves and the order of elements count only
/// when asked for. Linear in both documents, however deep they are.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/compare/tarn_compare_pairs.h"
#include "tarn/compare/tarn_compare_rows.h"
#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

/// A value that came (no `before`), went (no `after`), or is another one now: then both are no containers of
/// one kind.
struct Change {
  const Node* before = nullptr;  ///< in OLD
  const Node* after = nullptr;   ///< in NEW
  std::uint32_t step = 0;        ///< the comparison's own
};

struct ComparisonOptions {
  /// Volatile facts too; and the order of elements: what moved went at one place and came at another.
  bool all = false;
};

/// One step of the way from the root to a change: to a member, or to an element.
struct RouteStep {
  std::string_view key;
  std::uint32_t repeat = 1;
  std::optional<std::uint32_t> index;  ///< of an element
  /// Of a row, the members that name it. None where the facts table says that elements are parts of the
  /// document.
  std::vector<const Node*> row;
};

using Route = std::vector<RouteStep>;

class Comparison {
 public:
  /// Both trees have a root; they and the facts outlive this.
  Comparison(const Tree& before, const Tree& after, const Facts& facts, ComparisonOptions options);

  /// In the order of NEW; within a container what went comes first.
  const std::vector<Change>& changes() const { return m_changes; }
  /// The way in NEW; in OLD for what went.
  Route route(const Change& change) const;
  /// The containers on both sides that it came, went or changed in; null for the root itself.
  std::pair<const Node*, const Node*> containers(const Change& change) const;
  const Tree& before() const { return m_before; }
  const Tree& after() const { return m_after; }

 private:
  using Names = std::vector<std::string_view>;  ///< of columns

  struct Step {
    std::uint32_t above;  ///< number of the container's step; the root's own
    Facts::Step facts;
    const Node *before, *after;
    Pair index;           ///< of an element
    const Names* naming;  ///< of a row that has a name, else null
  };

  void visit(const Step& step);
  void compareMembers(const Step& step, std::uint32_t number);
  void compareElements(const Step& step, std::uint32_t number);
  std::vector<Pair> pairElements(const Side& before, const Side& after, const Step& step,
                                 const Names*& naming);
  std::vector<Digest> valuesOf(const Side& side, const Facts::Step& facts) const;
  bool isEqual(const Step& step) const;
  bool counts(const Facts::Step& facts) const;

  const Tree& m_before;
  const Tree& m_after;
  ComparisonOptions m_options;
  Digests m_digestsBefore, m_digestsAfter;
  std::vector<Step> m_waiting;  ///< the next one last
  std::vector<Step> m_steps;    ///< those that paths are made of
  std::deque<Names> m_namings;
  std::vector<Change> m_changes;
};

/// JSON Pointer (RFC 6901, `NAME#2` for repeated names).
std::string pointerOf(const Route& route);

}  // namespace tarn
