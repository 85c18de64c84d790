/// docs/facts.md: what every member means.

#include <fmt/format.h>

#include <algorithm>

#include "tarn/facts/tarn_facts_table.h"
#include "tarn/manual/tarn_manual_slots.h"

namespace tarn {

namespace {

/// Where a fact stands: a section, a member, or a column of a member's rows.
enum class Level { section, member, column };

bool isBelow(const Fact& fact, const Fact& above) {
  return fact.place.compare(0, above.place.size() + 1, above.place + "/") == 0;
}

bool hasSource(const Fact& fact) {
  return !(fact.source + fact.sqlite + fact.postgresql + fact.mariadb + fact.product).empty();
}

/// A section has no value of its own: facts stand below it, and nothing tells where it comes from.
Level levelOf(std::size_t index, const std::vector<Fact>& facts) {
  const Fact& fact = facts[index];
  if (!hasSource(fact) && index + 1 < facts.size() && isBelow(facts[index + 1], fact)) {
    return Level::section;
  }
  return std::count(fact.place.begin(), fact.place.end(), '*') -
                     (fact.place.rfind("/databaseInfo/*", 0) == 0 ? 1 : 0) >
                 0
             ? Level::column
             : Level::member;
}

std::string capital(std::string text) {
  text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  return text;
}

/// What is told in a word or two: unit, part, what it may give away.
std::string traitsOf(const Fact& fact) {
  std::vector<std::string> traits;
  if (fact.unit != Unit::text) {
    traits.push_back("unit: " + std::string(wordOf(fact.unit)));
  }
  if (fact.isVolatile) {
    traits.emplace_back("changes by itself");
  }
  if (!fact.names.empty()) {
    traits.push_back(fmt::format("a row is named by `{}`", fmt::join(fact.names, "` `")));
  }
  if (!fact.reveals.empty()) {
    traits.push_back(fmt::format("may reveal: {}", fmt::join(fact.reveals, ", ")));
  }
  if (fact.role != Role::none) {
    traits.push_back(fmt::format("the {} of the document", wordOf(fact.role)));
  }
  return traits.empty() ? "" : capital(fmt::format("{}.", fmt::join(traits, "; ")));
}

struct Line {
  const char* head;
  std::string Fact::*text;
};
constexpr Line kLines[] = {
    {"Source", &Fact::source},     {"SQLite", &Fact::sqlite},   {"PostgreSQL", &Fact::postgresql},
    {"MariaDB", &Fact::mariadb},   {"Product", &Fact::product}, {"`\"null\"`", &Fact::ifNull},
    {"`\"NULL\"`", &Fact::ifNULL}, {"`\"\"`", &Fact::ifEmpty},  {"`[]`", &Fact::ifNone}};

void appendLines(const Fact& fact, const char* before, std::string& page) {
  for (const Line& line : kLines) {
    if (const std::string& text = fact.*line.text; !text.empty()) {
      page += fmt::format("{}- {}: {}\n", before, line.head, text);
    }
  }
}

void appendMember(const Fact& fact, std::string& page) {
  const std::string traits = traitsOf(fact);
  page += fmt::format("\n### `{}`\n\n**{}.** {}{}{}\n\n", fact.place, fact.title, fact.meaning,
                      traits.empty() ? "" : " ", traits);
  appendLines(fact, "", page);
}

void appendColumn(const Fact& fact, std::string& page) {
  const std::string traits = traitsOf(fact);
  page += fmt::format("- Column `{}`, **{}**: {}{}{}\n", fact.place.substr(fact.place.rfind('/') + 1),
                      fact.title, fact.meaning, traits.empty() ? "" : " ", traits);
  appendLines(fact, "  ", page);
}

}  // namespace

std::string pageOfFacts() {
  std::string page;
  const std::vector<Fact>& facts = Facts::builtIn().all();
  for (std::size_t i = 0; i < facts.size(); ++i) {
    const Fact& fact = facts[i];
    switch (levelOf(i, facts)) {
      case Level::section:
        page += fmt::format("\n## {}: `{}`\n\n{}\n", fact.title, fact.place, fact.meaning);
        appendLines(fact, "", page);
        break;
      case Level::member:
        appendMember(fact, page);
        break;
      case Level::column:
        appendColumn(fact, page);
    }
  }
  return page;
}

}  // namespace tarn
