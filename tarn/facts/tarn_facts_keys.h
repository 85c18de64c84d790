#pragma once
/// The keys of the table of facts, one row each.

#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

/// A sentence of ours about what cannot be taken.
using Problem = std::optional<std::string>;

/// Puts the value of a line "key: value" where it belongs.
Problem takeKey(std::string_view key, std::string_view value, Fact& fact);

/// Without blanks at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace tarn
