#pragma once
/// Changes as lines for people, and their parts as JSON for programs.

#include <optional>
#include <string_view>
#include <vector>

#include "tarn/compare/tarn_compare_changes.h"
#include "tarn/document/tarn_document_json.h"
#include "tarn/document/tarn_document_shown.h"

namespace tarn {

/// The way to a change as people read it: `/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES`.
Shown shownRoute(const Route& route);

/// `PATH: OLD → NEW`, `+ PATH: NEW` or `- PATH: OLD`. A listing takes several lines: the route, and its hunks
/// with their places as in a unified diff without context.
std::vector<Shown> printed(const Comparison& comparison, const Change& change);
/// The same for a text that changed, came (there is no `before`) or went (no `after`).
std::vector<Shown> printed(const Shown& place, const std::optional<std::string_view>& before,
                           const std::optional<std::string_view>& after);

/// "added", "removed" or "changed".
std::string_view wordOf(const Change& change);

/// Appends the columns that name the row, with their values: of the innermost row on the way. Null when there
/// is none.
void appendRow(const Route& route, JsonText& json);

/// Appends a value with all below it as strict JSON; null for none.
void appendValue(const Tree& tree, const Node* node, JsonText& json);

}  // namespace tarn
