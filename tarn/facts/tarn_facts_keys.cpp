#include "tarn/facts/tarn_facts_keys.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace tarn {

namespace {

struct UnitWord {
  std::string_view word;
  Unit unit;
};
constexpr UnitWord kUnits[] = {{"text", Unit::text},   {"listing", Unit::listing}, {"time", Unit::time},
                               {"bytes", Unit::bytes}, {"pages", Unit::pages},     {"MHz", Unit::megahertz},
                               {"count", Unit::count}, {"number", Unit::number}};

struct RoleWord {
  std::string_view word;
  Role role;
};
constexpr RoleWord kRoles[] = {{"", Role::none},           {"host", Role::host},
                               {"time", Role::time},       {"engine", Role::engine},
                               {"version", Role::version}, {"database", Role::database}};

constexpr std::string_view kReveals[] = {"host", "person", "address", "path", "secrets"};

/// Keys whose value is kept as it is.
struct TextKey {
  std::string_view key;
  std::string Fact::*text;
};
constexpr TextKey kTextKeys[] = {
    {"title", &Fact::title},     {"meaning", &Fact::meaning}, {"kind", &Fact::kind},
    {"source", &Fact::source},   {"sqlite", &Fact::sqlite},   {"postgresql", &Fact::postgresql},
    {"mariadb", &Fact::mariadb}, {"product", &Fact::product}, {"\"null\"", &Fact::ifNull},
    {"\"NULL\"", &Fact::ifNULL}, {"\"\"", &Fact::ifEmpty},    {"[]", &Fact::ifNone},
    {"needs", &Fact::needs},
};

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
    const std::size_t end = std::min(text.find(' '), text.size());
    words.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

// Each takes the value of one key.

Problem takeUnit(std::string_view value, Fact& fact) {
  const auto* const found = std::find_if(std::begin(kUnits), std::end(kUnits),
                                         [value](const UnitWord& known) { return known.word == value; });
  if (found == std::end(kUnits)) {
    return "no such unit: " + std::string(value);
  }
  fact.unit = found->unit;
  return std::nullopt;
}

Problem takeRole(std::string_view value, Fact& fact) {
  const auto* const found = std::find_if(std::begin(kRoles) + 1, std::end(kRoles),
                                         [value](const RoleWord& known) { return known.word == value; });
  if (found == std::end(kRoles)) {
    return "no such role: " + std::string(value);
  }
  fact.role = found->role;
  return std::nullopt;
}

Problem takeYes(std::string_view value, bool* flag) {
  *flag = value == "yes";
  return *flag ? std::nullopt : Problem("only \"yes\" can stand here");
}

Problem takeVolatile(std::string_view value, Fact& fact) {
  return takeYes(value, &fact.isVolatile);
}

Problem takeContainer(std::string_view value, Fact& fact) {
  return takeYes(value, &fact.isContainer);
}

Problem takeOptional(std::string_view value, Fact& fact) {
  return takeYes(value, &fact.isOptional);
}

Problem takeBrief(std::string_view value, Fact& fact) {
  const std::size_t colon = value.find(": ");
  const std::size_t gap = value.find("{}");
  if (colon == std::string_view::npos || gap == std::string_view::npos || gap < colon) {
    return "a brief is \"GROUP: words with {}\"";
  }
  fact.brief.group = value.substr(0, colon);
  fact.brief.before = value.substr(colon + 2, gap - colon - 2);
  fact.brief.behind = value.substr(gap + 2);
  return std::nullopt;
}

Problem takeLow(std::string_view value, Fact& fact) {
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), fact.brief.low);
  const bool isPercent = error == std::errc() && end == value.data() + value.size() && fact.brief.low <= 100;
  return isPercent ? std::nullopt : Problem("low is a number of percent");
}

Problem takeNames(std::string_view value, Fact& fact) {
  fact.names = wordsOf(value);
  return std::nullopt;
}

Problem takeChart(std::string_view value, Fact& fact) {
  fact.chart = wordsOf(value);
  const bool isBars = fact.chart.size() == 3 && fact.chart[0] == "bars";
  const bool isShare = fact.chart.size() == 2 && fact.chart[0] == "share" && fact.chart[1][0] == '/';
  return isBars || isShare ? std::nullopt : Problem("a chart is \"bars LABEL VALUE\" or \"share PLACE\"");
}

Problem takeReveals(std::string_view value, Fact& fact) {
  fact.reveals = wordsOf(value);
  for (const std::string& word : fact.reveals) {
    if (std::find(std::begin(kReveals), std::end(kReveals), word) == std::end(kReveals)) {
      return "nothing that can be revealed: " + word;
    }
  }
  return std::nullopt;
}

struct Key {
  std::string_view key;
  Problem (*take)(std::string_view value, Fact& fact);
};
constexpr Key kKeys[] = {{"unit", takeUnit},         {"role", takeRole},
                         {"volatile", takeVolatile}, {"container", takeContainer},
                         {"optional", takeOptional}, {"names", takeNames},
                         {"chart", takeChart},       {"reveals", takeReveals},
                         {"brief", takeBrief},       {"low", takeLow}};

}  // namespace

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(" \r") + 1 - first);
}

Problem takeKey(std::string_view key, std::string_view value, Fact& fact) {
  for (const TextKey& known : kTextKeys) {
    if (known.key == key) {
      (fact.*known.text) = value;
      return std::nullopt;
    }
  }
  for (const Key& known : kKeys) {
    if (known.key == key) {
      return known.take(value, fact);
    }
  }
  return "no such key: " + std::string(key);
}

std::string_view wordOf(Unit unit) {
  return std::find_if(std::begin(kUnits), std::end(kUnits),
                      [unit](const UnitWord& known) { return known.unit == unit; })
      ->word;
}

std::string_view wordOf(Role role) {
  return std::find_if(std::begin(kRoles), std::end(kRoles),
                      [role](const RoleWord& known) { return known.role == role; })
      ->word;
}

}  // namespace tarn
