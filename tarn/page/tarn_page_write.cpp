#include "tarn/page/tarn_page_write.h"

#include <zlib.h>

#include "tarn/page/tarn_page_base64.h"
#include "tarn/page/tarn_page_model.h"
#include "tarn/page/tarn_page_parts.h"

namespace tarn {

namespace {

/// As a stream of zlib's (RFC 1950), which browsers undo by themselves. Nothing for want of memory.
std::optional<std::string> packed(const std::string& text) {
  uLongf size = compressBound(text.size());
  std::string result(size, '\0');
  const int status = compress2(reinterpret_cast<Bytef*>(result.data()), &size,
                               reinterpret_cast<const Bytef*>(text.data()), text.size(), Z_BEST_COMPRESSION);
  result.resize(size);
  return status == Z_OK ? std::optional(std::move(result)) : std::nullopt;
}

}  // namespace

std::optional<std::string> pageOf(const PageText& text) {
  const std::optional<std::string> data = packed(text.model);
  if (!data) {
    return std::nullopt;
  }
  const std::string fills[] = {text.title, text.summary, base64(*data), ""};
  std::string page;
  for (std::size_t slot = 0; slot < std::size(fills); ++slot) {
    page += kPageParts[slot];
    page += fills[slot];
  }
  return page.append(kPageParts[std::size(fills)]);
}

std::optional<std::string> pageOf(const PageSubject& subject) {
  return pageOf(
      {pageTitle(subject), pageSummary(subject), pageModel(subject.tree, subject.facts, subject.changes)});
}

}  // namespace tarn
