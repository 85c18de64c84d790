#pragma once
/// What the questions of `tarn fleet` share: the database that they ask, and how its answers are shown.

#include <memory>
#include <optional>
#include <string>

#include "tarn/document/tarn_document_json.h"
#include "tarn/document/tarn_document_shown.h"
#include "tarn/fleet/tarn_fleet_database.h"

namespace tarn {

class CommandLine;
class Console;

struct FleetOptions {
  std::string database;
  bool json = false, sql = false;
};

/// --from DB, which is required; and --json and --sql.
void declareFleet(CommandLine& line, FleetOptions& options);
/// --from DB alone.
void declareFleetDatabase(CommandLine& line, FleetOptions& options);

/// A database that is asked, or with --sql only says what it would be asked.
class FleetAsk {
 public:
  /// Opens the database. What goes wrong, here and below, is told to the console.
  FleetAsk(const FleetOptions& options, Console& console);

  /// Hands out the rows of an answer. False when there is none: of a problem, of a file that is not there, or
  /// because the statement was to be printed.
  bool ask(const FleetQuestion& question, const FleetDatabase::TakeRow& take);

 private:
  const FleetOptions& m_options;
  Console& m_console;
  std::unique_ptr<FleetDatabase> m_database;
};

/// A cell of an answer as a number, as a time (`2026-11-21T03:44:57Z`), as a text: nothing for a moment 0 and
/// for an empty cell.
std::uint64_t countOf(std::string_view cell);
Moment momentOf(std::string_view cell);
std::optional<std::string> timeText(Moment moment);
std::optional<std::string> someText(std::string_view cell);

/// A day or a time of the command line, as its first or its last moment. Nothing when it is none; the console
/// was told.
std::optional<Moment> beginningOf(const std::string& date, Console& console);
std::optional<Moment> endOf(const std::string& date, Console& console);

/// `1 host`, `2 hosts`.
Shown counted(std::uint64_t count, const char* noun);

}  // namespace tarn
