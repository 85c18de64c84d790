#pragma once
/// The page without what is a document's own, packed by the build from page.html, the styles and the scripts.

#include <string_view>

namespace tarn {

/// What stands before the title, before the summary, before the data, up to the script, and the script with
/// the rest.
extern const std::string_view kPageParts[5];

}  // namespace tarn
