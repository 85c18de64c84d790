#include "platform/host/sysinfo/mirel_host_sysinfo_text.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace host {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\f\v";

/// Far above what any kernel is built for; a higher processor number is nonsense.
constexpr long kMaxProcessors = 1L << 20;

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  text.remove_suffix(text.size() - (text.find_last_not_of(kWhiteSpace) + 1));
  return text;
}

/// Cuts the part up to the first `separator` off the front of `rest`.
std::string_view cut(std::string_view& rest, char separator) {
  const std::string_view part = rest.substr(0, rest.find(separator));
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

/// Cuts the first word off the front of `rest`; empty when there is none.
std::string_view cutWord(std::string_view& rest) {
  rest = trimmed(rest);
  const std::string_view word = rest.substr(0, rest.find_first_of(kWhiteSpace));
  rest.remove_prefix(word.size());
  return word;
}

/// Bytes of a number in what proc(5) calls kB.
std::optional<long> kilobytes(std::string_view text) {
  const std::optional<long> number = parseNumber(text);
  return number ? bytes(static_cast<unsigned long>(*number), 1024) : std::nullopt;
}

}  // namespace

std::optional<long> bytes(unsigned long count, unsigned long unit) {
  long product;
  return __builtin_mul_overflow(count, unit, &product) ? std::nullopt : std::optional(product);
}

std::optional<long> plus(std::optional<long> a, std::optional<long> b) {
  long sum;
  if (!a || !b || __builtin_add_overflow(*a, *b, &sum)) {
    return std::nullopt;
  }
  return sum;
}

std::optional<long> parseNumber(std::string_view text) {
  text = trimmed(text);
  unsigned long value = 0;  // unsigned, so that a minus sign is refused
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value > LONG_MAX) {
    return std::nullopt;
  }
  return static_cast<long>(value);
}

std::optional<ProcessorSet> parseProcessors(std::string_view text) {
  text = trimmed(text);
  ProcessorSet set;
  long lowest = 0;  // that may come next
  if (text.ends_with(',')) {
    return std::nullopt;
  }
  do {
    std::string_view range = cut(text, ',');
    const bool single = range.find('-') == std::string_view::npos;
    const std::optional<long> first = parseNumber(cut(range, '-'));
    const std::optional<long> last = single ? first : parseNumber(range);
    if (!first || !last || *first < lowest || *last < *first || *last >= kMaxProcessors) {
      return std::nullopt;
    }
    if (set.count == 0) {
      set.first = *first;
    }
    set.count += *last - *first + 1;
    lowest = *last + 1;
  } while (!text.empty());
  return set;
}

std::optional<long> parseMegahertz(std::string_view text) {
  if (text.ends_with("MHz")) {
    text.remove_suffix(3);
  }
  const bool whole = text.find('.') == std::string_view::npos;
  const std::optional<long> units = parseNumber(cut(text, '.'));
  const std::optional<long> fraction = whole ? 0 : parseNumber(text);
  if (!units || !fraction) {
    return std::nullopt;
  }
  const std::optional<long> speed = plus(units, !whole && text.front() >= '5' ? 1 : 0);
  return speed == 0 ? std::nullopt : speed;
}

std::optional<std::string_view> field(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view line = cut(text, '\n');
    const bool pair = line.find(':') != std::string_view::npos;
    if (pair && trimmed(cut(line, ':')) == key) {
      return trimmed(line);
    }
  }
  return std::nullopt;
}

std::optional<long> countProcessors(std::string_view cpuinfo) {
  long count = 0;
  while (!cpuinfo.empty()) {
    std::string_view line = cut(cpuinfo, '\n');
    if (trimmed(cut(line, ':')) == "processor" && parseNumber(line)) {
      ++count;
    }
  }
  return count == 0 ? std::nullopt : std::optional(count);
}

std::optional<long> memoryField(std::string_view meminfo, std::string_view key) {
  std::optional<std::string_view> value = field(meminfo, key);
  if (!value || !value->ends_with("kB")) {  // the unit also tells that the line is complete
    return std::nullopt;
  }
  value->remove_suffix(2);
  return kilobytes(*value);
}

std::optional<SwapSpace> parseSwaps(std::string_view swaps) {
  if (!cut(swaps, '\n').starts_with("Filename")) {
    return std::nullopt;
  }
  std::optional<long> total = 0;
  std::optional<long> free = 0;
  while (!swaps.empty()) {
    std::string_view line = cut(swaps, '\n');
    cutWord(line);  // path, whose blanks are written as escapes
    cutWord(line);  // type
    const std::optional<long> size = kilobytes(cutWord(line));
    const std::optional<long> used = kilobytes(cutWord(line));
    if (!size || !used || *used > *size) {
      return std::nullopt;
    }
    total = plus(total, size);
    free = plus(free, *size - *used);
  }
  if (!total || !free) {
    return std::nullopt;
  }
  return SwapSpace{*total, *free};
}

namespace {

/// The text that a shell would assign for `value`; nothing for an unfinished quotation.
std::optional<std::string> unquoted(std::string_view value) {
  const char quote = value.empty() ? '\0' : value.front();
  if (quote != '"' && quote != '\'') {
    return std::string(value);
  }
  std::string text;
  for (std::size_t i = 1; i < value.size(); ++i) {
    if (value[i] == quote) {
      return i + 1 == value.size() ? std::optional(text) : std::nullopt;
    }
    if (quote == '"' && value[i] == '\\' && i + 1 < value.size() &&
        std::string_view("\"\\$`").find(value[i + 1]) != std::string_view::npos) {
      ++i;
    }
    text += value[i];
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> prettyName(std::string_view osRelease) {
  constexpr std::string_view assignment = "PRETTY_NAME=";
  std::optional<std::string> name;
  while (!osRelease.empty()) {
    std::string_view line = trimmed(cut(osRelease, '\n'));
    if (line.starts_with(assignment)) {
      name = unquoted(line.substr(assignment.size()));
    }
  }
  const bool usable = name && !name->empty() && name->find('\0') == std::string::npos;
  return usable ? name : std::nullopt;
}

}  // namespace host
