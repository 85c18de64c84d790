#pragma once
/// The texts in which Linux describes a machine, understood.
///
/// Every function takes a text as it was read and answers nothing (`std::nullopt`) for one that does not
/// say what was asked: missing, malformed, cut short, out of range. No number is ever made up, and the
/// work is linear in the text whatever it holds.

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A set of processors, such as "0-3,8".
struct ProcessorSet {
  long count = 0;
  long first = 0;  ///< the lowest number in the set

  bool operator==(const ProcessorSet&) const = default;
};

/// Totals over all swap areas, in bytes.
struct SwapSpace {
  long total = 0;
  long free = 0;

  bool operator==(const SwapSpace&) const = default;
};

/// A decimal number from 0 up, with nothing but white space around it.
std::optional<long> parseNumber(std::string_view text);

/// A processor list as sysfs writes it: numbers and ranges in ascending order, none twice, at least one.
std::optional<ProcessorSet> parseProcessors(std::string_view text);

/// A speed such as "2596.122" or "3425.000000MHz", rounded to whole MHz. 0 is no speed.
std::optional<long> parseMegahertz(std::string_view text);

/// The value of the first "key : value" line, as in proc(5) /proc/cpuinfo and /proc/meminfo, without the
/// white space around it. It points into `text`.
std::optional<std::string_view> field(std::string_view text, std::string_view key);

/// How many lines of /proc/cpuinfo begin the record of a processor, which are those online.
std::optional<long> countProcessors(std::string_view cpuinfo);

/// A "key: N kB" line of /proc/meminfo, in bytes.
std::optional<long> memoryField(std::string_view meminfo, std::string_view key);

/// /proc/swaps, summed up. A table without rows tells that there is no swap.
std::optional<SwapSpace> parseSwaps(std::string_view swaps);

/// PRETTY_NAME of an os-release(5) file, unquoted; the last one counts, as in a shell. Never empty.
std::optional<std::string> prettyName(std::string_view osRelease);

/// The product, or nothing when it is no valid size.
std::optional<long> bytes(unsigned long count, unsigned long unit);

/// The sum, or nothing when a part is missing or it does not fit.
std::optional<long> plus(std::optional<long> a, std::optional<long> b);

}  // namespace host
