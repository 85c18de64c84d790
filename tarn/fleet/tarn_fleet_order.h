#pragma once
/// How values are compared by `greater` and `less`: as numbers, or as texts in natural order. Both engines
/// keep to what this says.

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// The text as a number, when it is one: `12`, `-0.5`, `+1.23E+002`. At most 18 digits before the point and
/// 18 behind it.
std::optional<double> numericValue(std::string_view text);

/// A text that stands, byte by byte, where this one stands in natural order (1.9 before 1.10): a character
/// that tells the length comes before each run of digits.
std::string naturalKey(std::string_view text);

}  // namespace tarn
