#pragma once
/// How single values look: sizes in units that say something, parts of a whole as bars.

#include <cstdint>
#include <optional>
#include <string_view>

#include "tarn/document/tarn_document_shown.h"
#include "tarn/document/tarn_document_tree.h"
#include "tarn/facts/tarn_facts_table.h"

namespace tarn {

/// A text of nothing but up to 18 digits; nothing for any other.
std::optional<std::uint64_t> numberOf(std::string_view text);

/// Without the blanks and line feeds at its end, as commands print them.
std::string_view withoutEnd(std::string_view text);

/// "23.5 GiB (25276514304)", "2700 MHz"; other texts on one line as they are.
Shown valueOf(std::string_view text, Unit unit);

/// The same in few characters: "23.5 GiB".
Shown brieflyOf(std::string_view text, Unit unit);

/// "9.2 KiB (9407)", "716 bytes"
Shown sizeOf(std::uint64_t bytes);

/// Of a number with more than three decimals, what stands before the third one; any other text whole.
std::string_view withoutDecimals(std::string_view text, Unit unit);

/// Whether a value is no answer.
bool isSilent(const Node& node);

/// The member as a part of the whole that its fact names; -1 when there is none, or one of them is no number.
double partOf(const Tree& tree, const Node& node, const Fact& fact);

/// A bar of `width` columns for a part of a whole; a part of more than all fills it.
Shown barOf(double part, std::size_t width);

/// "90 %", "<1 %"
Shown percentOf(double part);

}  // namespace tarn
