#pragma once
/// The page of a document: one file, with nothing outside of it.

#include <optional>
#include <string>

#include "tarn/page/tarn_page_summary.h"

namespace tarn {

/// Nothing for want of memory.
std::optional<std::string> pageOf(const PageSubject& subject);

}  // namespace tarn
