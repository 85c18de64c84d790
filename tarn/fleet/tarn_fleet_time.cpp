#include "tarn/fleet/tarn_fleet_time.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace tarn {

namespace {

constexpr std::int64_t kLast = 253'402'300'799;  // 9999-12-31T23:59:59Z

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}

/// Takes texts apart from the front. What does not fit makes it fail for good.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : m_rest(text) {}

  bool failed() const { return m_failed; }
  bool atEnd() const { return m_rest.empty(); }

  bool take(std::string_view anyOf) {
    const bool fits = !m_rest.empty() && anyOf.find(m_rest[0]) != std::string_view::npos;
    m_rest.remove_prefix(fits ? 1 : 0);
    return fits;
  }
  void expect(char byte) { m_failed = !take({&byte, 1}) || m_failed; }

  /// A number of exactly so many digits, at most `most`.
  int number(std::size_t digits, int most) {
    int value = 0;
    for (std::size_t at = 0; at < digits; ++at) {
      m_failed = m_failed || m_rest.empty() || !isDigit(m_rest[0]);
      if (m_failed) {
        return 0;
      }
      value = 10 * value + (m_rest[0] - '0');
      m_rest.remove_prefix(1);
    }
    m_failed = value > most;
    return value;
  }
  void skipDigits() {
    number(1, 9);
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of("0123456789"), m_rest.size()));
  }

 private:
  std::string_view m_rest;
  bool m_failed = false;
};

/// Nothing when there is no such day.
std::optional<std::int64_t> takeDay(Scanner& scanner) {
  namespace chrono = std::chrono;
  const chrono::year year(scanner.number(4, 9999));
  scanner.expect('-');
  const chrono::month month(static_cast<unsigned>(scanner.number(2, 12)));
  scanner.expect('-');
  const chrono::day day(static_cast<unsigned>(scanner.number(2, 31)));
  const chrono::year_month_day date(year, month, day);
  if (scanner.failed() || !date.ok() || year < chrono::year(1970)) {
    return std::nullopt;
  }
  return chrono::sys_days(date).time_since_epoch().count() * kSecondsPerDay;
}

std::int64_t takeTimeOfDay(Scanner& scanner) {
  std::int64_t seconds = std::int64_t{3600} * scanner.number(2, 23);
  scanner.expect(':');
  seconds += std::int64_t{60} * scanner.number(2, 59);
  if (scanner.take(":")) {
    seconds += scanner.number(2, 60);
    if (scanner.take(".,")) {
      scanner.skipDigits();
    }
  }
  return seconds;
}

/// What has to be taken off to come to UTC.
std::int64_t takeOffset(Scanner& scanner) {
  if (scanner.take("Zz") || scanner.atEnd()) {
    return 0;
  }
  const bool isWest = scanner.take("-");
  if (!isWest) {
    scanner.expect('+');
  }
  std::int64_t seconds = std::int64_t{3600} * scanner.number(2, 23);
  if (scanner.take(":") || !scanner.atEnd()) {
    seconds += std::int64_t{60} * scanner.number(2, 59);
  }
  return isWest ? -seconds : seconds;
}

/// `HHMMSS-ID.json`
std::optional<std::int64_t> timeOfFile(std::string_view name) {
  Scanner scanner(name);
  std::int64_t seconds = std::int64_t{3600} * scanner.number(2, 23);
  seconds += std::int64_t{60} * scanner.number(2, 59);
  seconds += scanner.number(2, 60);
  scanner.expect('-');
  return scanner.failed() ? std::nullopt : std::optional(seconds);
}

std::string_view withoutEnding(std::string_view name, std::string_view ending) {
  return name.ends_with(ending) ? name.substr(0, name.size() - ending.size()) : name;
}

}  // namespace

std::optional<DocumentTime> timeOf(std::string_view text) {
  Scanner scanner(text);
  const std::optional<std::int64_t> day = takeDay(scanner);
  if (!day || scanner.atEnd()) {
    return day ? std::optional(DocumentTime{*day, true}) : std::nullopt;
  }
  if (!scanner.take("Tt ")) {
    return std::nullopt;
  }
  std::int64_t seconds = *day + takeTimeOfDay(scanner);
  scanner.take(" ");
  seconds -= takeOffset(scanner);
  const bool fits = !scanner.failed() && scanner.atEnd() && seconds >= 0 && seconds <= kLast;
  return fits ? std::optional(DocumentTime{seconds, false}) : std::nullopt;
}

std::optional<StoredName> storedName(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  constexpr std::size_t kDay = 10, kTime = 7;
  if (slash == std::string_view::npos || slash < kDay || (slash > kDay && path[slash - kDay - 1] != '/')) {
    return std::nullopt;
  }
  const std::optional<DocumentTime> day = timeOf(path.substr(slash - kDay, kDay));
  const std::string_view name = withoutEnding(withoutEnding(path.substr(slash + 1), ".zst"), ".json");
  const std::optional<std::int64_t> time = timeOfFile(name);
  return day && time ? std::optional(StoredName{day->seconds + *time, name.substr(kTime)}) : std::nullopt;
}

std::optional<ChosenTime> chosenTime(const std::optional<DocumentTime>& document,
                                     const std::optional<StoredName>& file) {
  if (!document) {
    return file ? std::optional(ChosenTime{file->seconds, "file"}) : std::nullopt;
  }
  const std::int64_t between = file ? file->seconds - document->seconds : 2 * kSecondsPerDay;
  const bool isNear = between >= -kSecondsPerDay && between < 2 * kSecondsPerDay;
  return document->isDate && file && isNear ? ChosenTime{file->seconds, "file"}
                                            : ChosenTime{document->seconds, "document"};
}

std::string rfc3339(Moment moment) {
  const std::int64_t seconds = std::clamp<std::int64_t>(moment / kMomentsPerSecond, 0, kLast);
  const std::chrono::sys_days day(std::chrono::days(seconds / kSecondsPerDay));
  const std::chrono::year_month_day date(day);
  const std::int64_t time = seconds % kSecondsPerDay;
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), time / 3600,
                     time / 60 % 60, time % 60);
}

}  // namespace tarn
