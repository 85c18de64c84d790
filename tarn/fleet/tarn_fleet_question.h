#pragma once
/// The questions that a fleet's database answers. The SQL of each lies beside, a file an engine:
/// sqlite/NAME.sql, clickhouse/NAME.sql; its values are parameters, written `{name}` there.
///
/// All texts are compared byte by byte. Moments are microseconds since 1970, as decimal numbers. Of facts
/// only those that hold now count, unless said; a place that went away has none.

#include <string>
#include <utility>
#include <vector>

namespace tarn {

struct FleetQuestion {
  std::string name;  ///< of the files
  std::vector<std::pair<std::string, std::string>> values = {};
};

/// One row a host, by host: host, moment, file, state, problem, engine, version, database, answered, asked of
/// its newest document (by moment, then hash), and how many documents it has. No row when there is none. A
/// document with the problem `future` or `other host` is the newest only where there is no other.
FleetQuestion hostsQuestion();

/// One row a document with a problem, by file: file, host, moment, state, problem, line, column.
FleetQuestion problemsQuestion();

/// A condition on the facts of one pointer. `pointer` is `*` for any place, or a pointer in which elements
/// stand by name, or by `*` or a number for any.
struct FleetCondition {
  enum class Test { equals, contains, greater, less };
  std::string pointer;
  Test test = Test::equals;
  std::string value;
};
/// One row a fact that meets the condition, by host, then place: host, place, value. `greater` and `less`
/// compare numbers where both are, else texts in natural order (1.9 before 1.10); where only the condition's
/// value is a number, those that begin with a digit (15.0.18 beside 15). See tarn_fleet_order.h.
FleetQuestion whereQuestion(const FleetCondition& condition);

/// One row a value, the most frequent first, then by value: value, how many hosts show it at that pointer,
/// how many facts there are of it.
FleetQuestion spreadQuestion(const std::string& pointer);

/// One row a change of a host, by since, then place: since, place, value, whether it is there (1 or 0). The
/// host's first document comes as changes, too. `pointer` as in a condition, or a beginning of one.
FleetQuestion historyQuestion(const std::string& host, const std::string& pointer);

/// One row a pointer of which facts changed since that moment, the one on most hosts first, then by pointer:
/// pointer, how many hosts, how many changes. A host's first document is no change.
FleetQuestion driftQuestion(const std::string& since);

/// The documents of a host up to a moment whose facts were taken, newest first: moment, file, hash in
/// lower-case hexadecimal digits, bytes.
FleetQuestion documentsQuestion(const std::string& host, const std::string& until);

}  // namespace tarn
