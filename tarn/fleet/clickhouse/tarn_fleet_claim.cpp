#include "tarn/fleet/clickhouse/tarn_fleet_claim.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <thread>

#include "tarn/fleet/clickhouse/tarn_fleet_owner.h"
#include "tarn/fleet/clickhouse/tarn_fleet_statement.h"
#include "tarn/fleet/clickhouse/tarn_fleet_tabs.h"

namespace tarn {

namespace {

constexpr int kTableExists = 57;
constexpr std::chrono::milliseconds kPause{100};
constexpr std::chrono::seconds kSilence{60};

// The owner is told by the table itself, so that there is no claim without one.
constexpr char kMake[] = "CREATE TABLE held_{0} (owner String DEFAULT '{1}', beat DateTime) ENGINE = Memory";
constexpr char kNewest[] =
    "SELECT table, default_expression FROM system.columns WHERE database = currentDatabase() AND name = "
    "'owner' "
    "AND match(table, '^(held|free)_[0-9]+$') ORDER BY toUInt64OrZero(substring(table, 6)) DESC LIMIT 1";
constexpr char kOlder[] =
    "SELECT table FROM system.columns WHERE database = currentDatabase() AND name = 'owner' "
    "AND match(table, '^(held|free)_[0-9]+$') AND toUInt64OrZero(substring(table, 6)) < {}";
constexpr char kWriting[] =
    "SELECT count() FROM system.processes WHERE position(query_id, concat('tarn.', currentDatabase(), '.')) "
    "= 1";

std::uint64_t numberIn(std::string_view text) {
  std::uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

/// Between the quotes of a literal.
std::string ownerIn(std::string_view expression) {
  const std::size_t begin = expression.find('\'');
  const std::size_t end = expression.rfind('\'');
  return begin < end ? std::string(expression.substr(begin + 1, end - begin - 1)) : "";
}

HttpOutcome rowsOf(FleetHttp* http, std::string_view statement, const TabRows::TakeRow& take) {
  TabRows rows(take);
  return http->ask(statement, [&](std::string_view bytes) { return rows.add(bytes); });
}

}  // namespace

HttpOutcome FleetClaim::take(const std::function<bool()>& waiting) {
  HttpOutcome problem = repeat(waiting, [this](bool* taken) { return tryToTake(taken); });
  problem = problem ? problem : repeat(waiting, [this](bool* alone) { return lookForOthers(alone); });
  return problem ? problem : readOlder();
}

HttpOutcome FleetClaim::repeat(const std::function<bool()>& waiting,
                               const std::function<HttpOutcome(bool* done)>& step) {
  bool done = false;
  for (Clock::time_point said = Clock::now();;) {
    HttpOutcome problem = step(&done);
    if (problem || done) {
      return problem;
    }
    std::this_thread::sleep_for(kPause);
    if (Clock::now() - said >= std::chrono::seconds(1)) {
      said = Clock::now();
      if (!waiting()) {
        return HttpProblem{0, "interrupted"};
      }
    }
  }
}

HttpOutcome FleetClaim::giveBack() {
  return m_http->ask(fmt::format("RENAME TABLE held_{0} TO free_{0}", m_number));
}

HttpOutcome FleetClaim::confirm() {
  Newest newest;
  if (HttpOutcome problem = read(&newest)) {
    return problem;
  }
  if (newest.number != m_number) {
    return HttpProblem{0, "another loader has taken over"};
  }
  return m_http->ask(fmt::format("INSERT INTO held_{} (beat) SELECT now()", m_number));
}

HttpOutcome FleetClaim::read(Newest* newest) {
  return rowsOf(m_http, kNewest, [newest](std::span<const std::string_view> row) {
    newest->number = numberIn(row[0].substr(5));
    newest->held = row[0].starts_with("held");
    newest->owner = ownerIn(row[1]);
    return true;
  });
}

HttpOutcome FleetClaim::tryToTake(bool* taken) {
  Newest newest;
  HttpOutcome problem = read(&newest);
  return problem || !isFree(newest) ? problem : make(newest.number + 1, taken);
}

/// Of two that find the same claim free one makes the table. One that was slow may make a table that others
/// have made and dropped already: then there is a higher one.
HttpOutcome FleetClaim::make(std::uint64_t number, bool* made) {
  HttpOutcome problem = m_http->ask(fmt::format(kMake, number, thisProcess()));
  if (problem) {
    return problem->code == kTableExists ? std::nullopt : problem;
  }
  Newest newest;
  if ((problem = read(&newest))) {
    return problem;
  }
  *made = newest.number == number;
  m_number = number;
  return *made ? std::nullopt : m_http->ask(fmt::format("DROP TABLE held_{}", number));
}

HttpOutcome FleetClaim::lookForOthers(bool* alone) {
  std::string count;
  HttpOutcome problem = answerOf(m_http, kWriting, &count);
  *alone = count == "0\n";
  return problem || *alone ? problem : confirm();
}

HttpOutcome FleetClaim::readOlder() {
  m_older.clear();
  return rowsOf(m_http, fmt::format(kOlder, m_number), [this](std::span<const std::string_view> row) {
    m_older.emplace_back(row[0]);
    return true;
  });
}

std::uint64_t FleetClaim::oldestHeld() const {
  std::uint64_t oldest = m_number;
  for (const std::string& table : m_older) {
    oldest =
        table.starts_with("held") ? std::min(oldest, numberIn(std::string_view(table).substr(5))) : oldest;
  }
  return oldest;
}

HttpOutcome FleetClaim::dropOlder() {
  HttpOutcome problem;
  for (std::size_t at = 0; at < m_older.size() && !problem; ++at) {
    problem = m_http->ask("DROP TABLE IF EXISTS " + m_older[at]);
  }
  return problem;
}

/// Silence is measured by our own clock.
bool FleetClaim::isFree(const Newest& newest) {
  if (!newest.held || newest.owner == thisProcess() || hasEnded(newest.owner)) {
    return true;
  }
  const std::string sign = fmt::format("{} {}", newest.number, beatsOf(newest.number));
  if (sign != m_watched) {
    m_watched = sign;
    m_watchedSince = Clock::now();
  }
  return Clock::now() - m_watchedSince > kSilence;
}

/// How often the owner has said that it lives. What keeps us from asking keeps us from taking the claim, too.
std::string FleetClaim::beatsOf(std::uint64_t number) {
  std::string beats;
  rowsOf(m_http, fmt::format("SELECT count() FROM held_{}", number),
         [&](std::span<const std::string_view> row) {
           beats = row[0];
           return true;
         });
  return beats;
}

}  // namespace tarn
