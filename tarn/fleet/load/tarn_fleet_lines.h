#pragma once
/// The lines of a log, also of one that was rotated and compressed since, by gzip or zstd. What it is, its
/// bytes tell, not its name.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// Hands out the lines without their ends. A sentence when the file cannot be read to its end.
using TakeLine = std::function<void(std::string_view line)>;
std::optional<std::string> readLines(const std::string& file, const TakeLine& take);

}  // namespace tarn
