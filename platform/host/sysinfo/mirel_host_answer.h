#pragma once
/// How a system-information query is answered: value by value, each with its status word, and one result
/// code that follows from them.

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "platform/sysinfo.h"

namespace host {

/// The first of several sources that told the value.
template <class Value>
std::optional<Value> firstKnown(std::initializer_list<std::optional<Value>> sources) {
  const auto known = std::find_if(sources.begin(), sources.end(), [](const auto& value) { return !!value; });
  return known == sources.end() ? std::nullopt : *known;
}

class Answer {
 public:
  /// A number.
  template <class Record>
  void set(Record& record, std::optional<long> value) {
    record.value = static_cast<decltype(record.value)>(value.value_or(0));
    record.status = count(value.has_value());
  }

  /// A text, cut to the room it has.
  void set(OSSSysInfoStr& record, std::optional<std::string_view> text) {
    record.status = set(record.value, text);
  }

  /// A text that has no status word of its own; the one it would have is returned.
  template <std::size_t size>
  unsigned int set(char (&buffer)[size], std::optional<std::string_view> text) {
    buffer[text.value_or("").copy(buffer, size - 1)] = '\0';
    return count(text.has_value());
  }

  /// The result of the query.
  unsigned int code() const {
    if (m_known == 0) {
      return OSS_SYSINFO_UNAVAILABLE;
    }
    return m_missing == 0 ? 0 : OSS_SYSINFO_PARTIAL;
  }

 private:
  unsigned int count(bool known) {
    ++(known ? m_known : m_missing);
    return known ? 0 : OSS_SYSINFO_UNAVAILABLE;
  }

  int m_known = 0;
  int m_missing = 0;
};

}  // namespace host
