#pragma once
/// When documents were made: times as documents write them, and as the collection server's file names do.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tarn/fleet/tarn_fleet_record.h"

namespace tarn {

constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr Moment kMomentsPerSecond = 1'000'000;

struct DocumentTime {
  std::int64_t seconds = 0;  ///< since 1970-01-01 00:00 UTC
  bool isDate = false;       ///< nothing tells the time of that day; `seconds` is its beginning
};

/// `2026-11-21`, or with a time behind "T" or a blank: `10:20` or `10:20:30`, a fraction of any length, which
/// is left out, and `Z` or an offset (`+01:00`, `+0100`, `+01`), else it is UTC. Years 1970 to 9999. Nothing
/// when it is none of these, or no day of the calendar; a leap second is the second behind.
std::optional<DocumentTime> timeOf(std::string_view text);

/// The time in the name that the collection server gave a file, `YYYY-MM-DD/HHMMSS-ID.json` or `….json.zst`
/// at the end of a path; nothing when it has another form.
struct StoredName {
  std::int64_t seconds = 0;
  std::string_view request;  ///< the ID, within the path
};
std::optional<StoredName> storedName(std::string_view path);

/// Of both, the better one: a date alone gives way to a file's time of that day or one beside it.
struct ChosenTime {
  std::int64_t seconds = 0;
  const char* from = "";  ///< `document`, `file`
};
std::optional<ChosenTime> chosenTime(const std::optional<DocumentTime>& document,
                                     const std::optional<StoredName>& file);

/// `2026-11-21T10:20:30Z` (RFC 3339). Moments before 1970 or behind 9999 are shown as the nearest.
std::string rfc3339(Moment moment);

}  // namespace tarn
