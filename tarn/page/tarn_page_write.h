#pragma once
/// A page: one file, with nothing outside of it.

#include <optional>
#include <string>

#include "tarn/page/tarn_page_summary.h"

namespace tarn {

/// What fills a page: title and summary as HTML, and the data for its script (tarn_page_model.h).
struct PageText {
  std::string title, summary, model;
};
/// Nothing for want of memory.
std::optional<std::string> pageOf(const PageText& text);

/// The page of a document.
std::optional<std::string> pageOf(const PageSubject& subject);

}  // namespace tarn
