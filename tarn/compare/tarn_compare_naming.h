#pragma once
/// Which columns name the rows of two arrays: their values together occur once on each side.

#include <cstddef>
#include <string>
#include <vector>

#include "tarn/compare/tarn_compare_rows.h"

namespace tarn {

/// Numbers of columns, ascending where they were inferred.
using ColumnSet = std::vector<std::size_t>;

/// The first of these that names the rows, or none:
///
/// 1. `known`, the names that the facts table gives;
/// 2. the column that a column TARN_OBJECTIFY speaks of;
/// 3. the smallest set that does. Of several that are equally small it is the one by which most rows meet,
///    and one by which fewer than half of them do is taken only when no larger one does better.
///
/// The search for the third is over when each value has been looked at 16 times, so it stays linear.
ColumnSet namingColumns(const Rows& rows, const std::vector<std::string>& known);

/// What the columns say of a row, as one digest.
Digest nameOf(const Rows& rows, std::size_t row, const ColumnSet& columns);

}  // namespace tarn
