
#include "tarn/commands/tarn_commands_columns.h"
#include "tarn/commands/tarn_commands_command.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_fleet_condition.h"
#include "tarn/commands/tarn_commands_fleet_rows.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_members.h"

namespace tarn {

namespace {

struct WhereOptions {
  FleetOptions fleet;
  std::vector<std::string> conditions;
};

struct Shows {
  std::string place, value;
};

/// A host that meets all conditions so far: of each the fact that does, the first by place.
struct Match {
  std::string host;
  std::vector<Shows> facts;
};

constexpr Member<Match> kMembers[] = {
    {"host", "Name of the host.", [](const Match& match, JsonText& json) { json.element(match.host); }},
    {"facts",
     "For each condition the fact that meets it, the first where there are several: an array of objects with "
     "\"place\" and \"value\".",
     [](const Match& match, JsonText& json) {
       json.array();
       for (const Shows& fact : match.facts) {
         json.object().member("place", fact.place).member("value", fact.value).end();
       }
       json.end();
     }}};

/// Answers come by host, so both sides are walked along once.
class Matches {
 public:
  explicit Matches(std::vector<Match> before) : m_before(std::move(before)) {}

  void add(FleetRow row, bool isFirst) {
    const std::string_view host = row[0];
    if (!m_after.empty() && m_after.back().host == host) {
      return;
    }
    while (!isFirst && m_at < m_before.size() && m_before[m_at].host < host) {
      ++m_at;
    }
    if (isFirst) {
      m_after.push_back({std::string(host), {}});
    } else if (m_at < m_before.size() && m_before[m_at].host == host) {
      m_after.push_back(std::move(m_before[m_at++]));
    } else {
      return;
    }
    m_after.back().facts.push_back({std::string(row[1]), std::string(row[2])});
  }

  std::vector<Match> after() { return std::move(m_after); }

 private:
  std::vector<Match> m_before, m_after;
  std::size_t m_at = 0;
};

/// Nothing when a question was not answered.
std::optional<std::vector<Match>> matchesOf(const std::vector<FleetCondition>& conditions, FleetAsk& fleet) {
  std::vector<Match> found;
  bool isFirst = true;
  bool answered = true;
  for (const FleetCondition& condition : conditions) {
    Matches matches(std::move(found));
    answered = fleet.ask(whereQuestion(condition), [&](FleetRow row) {
      matches.add(row, isFirst);
      return true;
    }) && answered;
    found = matches.after();
    isFirst = false;
  }
  return answered ? std::optional(std::move(found)) : std::nullopt;
}

/// The place only where the condition does not tell it.
Shown factCell(const Shows& fact, const FleetCondition& condition) {
  return fact.place == condition.pointer ? shown(fact.value)
                                         : say("{} {}", shown(fact.place), shown(fact.value));
}

void print(const std::vector<Match>& matches, const std::vector<FleetCondition>& conditions,
           Columns& columns) {
  for (const Match& match : matches) {
    std::vector<Shown> cells = {shown(match.host)};
    for (std::size_t i = 0; i < conditions.size(); ++i) {
      cells.push_back(factCell(match.facts[i], conditions[i]));
    }
    columns.row(std::move(cells));
  }
}

Outcome where(const WhereOptions& options, Console& console) {
  std::vector<FleetCondition> conditions;
  for (const std::string& text : options.conditions) {
    const std::optional<FleetCondition> condition = parseCondition(text);
    if (!condition) {
      console.trouble(say("\"{}\" is no condition: write POINTER=VALUE, or >, < or ~ for =", shown(text)));
      return Outcome::nothing;
    }
    conditions.push_back(*condition);
  }
  FleetAsk fleet(options.fleet, console);
  const std::optional<std::vector<Match>> matches = matchesOf(conditions, fleet);
  if (!matches) {
    return Outcome::nothing;
  }
  if (options.fleet.json) {
    for (const Match& match : *matches) {
      console.bytes(asJsonLine(kMembers, match));
    }
    return Outcome::nothing;
  }
  Columns columns(console, Columns::Wide::isCut);
  print(*matches, conditions, columns);
  return Outcome::nothing;
}

void declare(CommandLine& line, WhereOptions& options) {
  line.argument("CONDITION", options.conditions, "POINTER=VALUE, or with >, < or ~ for =").required();
  declareFleet(line, options.fleet);
}

constexpr const char* kText =
    "Lists the hosts of which all conditions hold now, each with the values that meet them. A condition is a "
    "pointer, an operator and a value:\n\n"
    "  POINTER=VALUE   the value is this text\n"
    "  POINTER~TEXT    the text stands somewhere in it\n"
    "  POINTER>VALUE   greater; numbers when both are, else\n"
    "  POINTER<VALUE   less; texts in natural order, 1.9 before 1.10\n\n"
    "Letters are compared as they are. Versions of two parts look like numbers, so 15.10 is less than 15.9; "
    "one of more parts does not, and 15.0.18 is greater than 15.\n\n"
    "A pointer names a place as tarn diff does: /databaseInfo[name=SALES]/bufferpools[BPNAME=main]/NPAGES. A "
    "number "
    "or * in the place of an element stands for any of them, and * alone for any place. ~0 and ~1 in a "
    "pointer are "
    "read as RFC 6901 tells where another operator follows.";

}  // namespace

Command fleetWhereCommand() {
  return {.name = "fleet where",
          .sentence = "List the hosts that show these values",
          .text = kText,
          .examples =
              {{"tarn fleet where '/platformInfo/osName=Linux' '/instanceInfo/version>15.17' --from fleet.db",
                "db1  Linux  15.18\n"
                "db2  Linux  15.18"},
               {"tarn fleet where '/databaseInfo/0/bufferpools[BPNAME=main]/NPAGES>1000' '*~0-25' --from "
                "fleet.db --json | jq -r '.host, .facts[].value'",
                "db1\n32768\n6.1.0-25-amd64"}},
          .lists = {membersList(kMembers)},
          .bind = bindTo<WhereOptions>(declare, where)};
}

}  // namespace tarn
