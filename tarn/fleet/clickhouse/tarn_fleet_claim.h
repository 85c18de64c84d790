#pragma once
/// One loader at a time on a ClickHouse server, which knows no lock.
///
/// A claim is a table, `held_NUMBER`: making a table that is there already fails, so of two loaders one gets
/// the number. It is renamed to `free_NUMBER` when it is given back, and dropped by the next owner. The
/// numbers only grow: an owner that was taken for dead finds a higher one than its own, and what it wrote has
/// a lower version.
///
/// The claim of a process of this machine that has ended is free, and so is one whose owner was silent for a
/// minute. What such an owner sent last may still be on its way into a table, on a server that hangs: the new
/// owner waits for it, since it goes on from what it reads.

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tarn/fleet/clickhouse/tarn_fleet_http.h"

namespace tarn {

class FleetClaim {
 public:
  /// `http` stays the caller's.
  explicit FleetClaim(FleetHttp* http) : m_http(http) {}

  /// Waits for it. `waiting` is called each second and ends the waiting with false.
  HttpOutcome take(const std::function<bool()>& waiting);
  /// The oldest number that was not given back, whose owner may have left work half done; our own when there
  /// is none.
  std::uint64_t oldestHeld() const;
  /// Drops what others have held, once it is seen to.
  HttpOutcome dropOlder();
  HttpOutcome giveBack();

  /// Says that the owner lives. A problem when somebody else has taken the claim over.
  HttpOutcome confirm();

  /// Grows with every claim.
  std::uint64_t number() const { return m_number; }

 private:
  /// The claim with the highest number; 0 when there was none yet.
  struct Newest {
    std::uint64_t number = 0;
    bool held = false;
    std::string owner;
  };
  using Clock = std::chrono::steady_clock;

  /// Ten times a second, until it is done.
  static HttpOutcome repeat(const std::function<bool()>& waiting,
                            const std::function<HttpOutcome(bool* done)>& step);
  HttpOutcome read(Newest* newest);
  HttpOutcome tryToTake(bool* taken);
  HttpOutcome make(std::uint64_t number, bool* made);
  HttpOutcome lookForOthers(bool* alone);
  HttpOutcome readOlder();
  bool isFree(const Newest& newest);
  std::string beatsOf(std::uint64_t number);

  FleetHttp* m_http;
  std::uint64_t m_number = 0;
  std::vector<std::string> m_older;  ///< tables
  std::string m_watched;             ///< the last sign of life of another owner
  Clock::time_point m_watchedSince;
};

}  // namespace tarn
