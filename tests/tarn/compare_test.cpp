/// Differences: every case of changes.txt, and random tables and listings, are checked three times. What is
/// printed; OLD with the changes applied is NEW; NEW against itself has none.

#include <map>
#include <random>

#include "tarn/compare/tarn_compare_changes.h"
#include "tarn/compare/tarn_compare_lines.h"
#include "tarn/compare/tarn_compare_print.h"
#include "tests/cases.h"

using namespace tarn;

namespace {

const Facts& facts() {
  static const Facts all = [] {
    Facts some;
    EXPECT_FALSE(
        some.add("/t\n  title: T\n  meaning: M\n  names: K L\n"
                 "/now\n  title: T\n  meaning: M\n  volatile: yes\n"
                 "/t/*/USED\n  title: T\n  meaning: M\n  volatile: yes\n"
                 "/m/*/USED\n  title: T\n  meaning: M\n  volatile: yes\n"));
    return some;
  }();
  return all;
}

using Values = std::map<const Node*, std::vector<std::string>>;

/// A value without the order of what it holds; a node has the values of `instead` when it is in there, and a
/// container those of `more` besides.
std::vector<std::string> plain(const Tree& tree, const Node& node, bool ordered, const Values& instead = {},
                               const Values& more = {}) {
  if (const auto found = instead.find(&node); found != instead.end())
    return found->second;
  const std::string name = node.key.empty() ? "" : std::string(node.key) + std::to_string(node.repeat) + ":";
  if (node.kind == NodeKind::text || node.kind == NodeKind::scalar)
    return {name + (node.kind == NodeKind::text ? "'" : "") + std::string(node.text)};
  std::vector<std::string> below = more.contains(&node) ? more.at(&node) : std::vector<std::string>();
  for (const Node& child : tree.children(node))
    for (const std::string& value : plain(tree, child, ordered, instead, more))
      below.push_back(value);
  std::sort(below.begin(), below.end());
  std::string text = name + (node.kind == NodeKind::object ? "{" : "[");
  for (const std::string& value : below)
    text += value + ",";
  return {text};
}

void expectThatChangesLeadToNew(const Comparison& comparison) {
  Values instead;
  Values more;
  for (const Change& change : comparison.changes()) {
    std::vector<std::string> value;
    if (change.after != nullptr)
      value = plain(comparison.after(), *change.after, false);
    if (change.before != nullptr)
      instead[change.before] = value;
    else
      more[comparison.containers(change).first].push_back(value.front());
  }
  EXPECT_EQ(plain(comparison.before(), comparison.before().root(), false, instead, more),
            plain(comparison.after(), comparison.after().root(), false));
}

std::string differences(const Arguments& texts, bool all) {
  const Tree before(texts[0]);
  const Tree after(texts[1]);
  const Comparison comparison(before, after, facts(), {all});
  if (all || texts[1].find("USED") == std::string::npos)  // what is left out cannot be applied
    expectThatChangesLeadToNew(comparison);
  EXPECT_TRUE(Comparison(after, after, facts(), {all}).changes().empty());
  std::string result;
  for (const Change& change : comparison.changes())
    for (const Shown& line : printed(comparison, change))
      result += "\n" + line.text();
  return result.empty() ? result : result.substr(1);
}

/// A stretch of few letters, so that most of them come again.
std::vector<std::string_view> randomLines(std::mt19937& source) {
  constexpr std::string_view kLetters = "aaaabbbcdefghijk";
  std::vector<std::string_view> lines(source() % 40);
  for (std::string_view& line : lines)
    line = kLetters.substr(source() % kLetters.size(), 1);
  return lines;
}

std::string randomTable(std::mt19937& source) {
  std::string text = R"({"rows": [)";
  for (unsigned long row = 0, count = source() % 6; row < count; ++row) {
    text += row == 0 ? "{" : ",{";
    for (const std::string name : {"A", "B", "C"})
      text += (name == "A" ? "\"" : ",\"") + name + "\":\"" + std::to_string(source() % 4) + "\"";
    text += "}";
  }
  return text + "]}";
}

TEST(Changes, AreThoseOfTheTable) {
  expectCases(MIREL_TARN "/changes.txt",
              {{"diff", [](const Arguments& texts) { return differences(texts, false); }},
               {"all", [](const Arguments& texts) { return differences(texts, true); }}});
}

TEST(Changes, OfRandomTablesLeadToTheNewOne) {
  std::mt19937 source(7);
  for (int round = 0; round < 2000; ++round) {
    const std::string before = randomTable(source);
    const std::string after = randomTable(source);
    SCOPED_TRACE(before + " " + after);
    differences({before, after}, round % 2 == 0);
  }
}

TEST(Changes, OfRandomListingsLeadToTheNewOne) {
  std::mt19937 source(7);
  for (int round = 0; round < 5000; ++round) {
    const std::vector<std::string_view> before = randomLines(source);
    const std::vector<std::string_view> after = randomLines(source);
    std::vector<std::string_view> made;
    std::size_t at = 0;
    for (const Hunk& hunk : hunksOf(before, after)) {
      made.insert(made.end(), before.begin() + static_cast<long>(at),
                  before.begin() + static_cast<long>(hunk.before));
      EXPECT_EQ(made.size(), hunk.after);
      made.insert(made.end(), after.begin() + static_cast<long>(hunk.after),
                  after.begin() + static_cast<long>(hunk.after + hunk.come));
      at = hunk.before + hunk.gone;
    }
    made.insert(made.end(), before.begin() + static_cast<long>(at), before.end());
    ASSERT_EQ(made, after);
  }
}

}  // namespace
