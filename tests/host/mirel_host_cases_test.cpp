// What stands in cases.txt: functions of the host that tell their arguments only.
#include <algorithm>

#include "platform/host/sqlcli/mirel_host_statement.h"
#include "platform/host/sqlcli/mirel_host_utf8.h"
#include "platform/host/sysinfo/mirel_host_sysinfo_text.h"
#include "platform/services.h"
#include "tests/cases.h"

namespace {

using namespace host;

const SqloLongOption LONG_OPTIONS[] = {
    {"database", true, 'd'}, {"outfile", true, 'o'}, {"send", false, 's'},
    {"support", false, 'z'}, {"name", true, 'n'},    {nullptr, false, 0},
};

/// One word an option: its letter and its argument.
std::string options(Arguments words) {
  std::vector<char*> arguments(words.size() + 1);
  std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
  SqloOptionState state = {};
  const auto next = [&] {
    return sqlogopt(static_cast<int>(words.size()), arguments.data(), "d:o:szn:", &state, LONG_OPTIONS);
  };
  std::string text;
  for (int letter = next(); letter != -1; letter = next()) {
    text += std::string(text.empty() ? "" : " ") + static_cast<char>(letter);
    text += state.argument != nullptr ? "=" + std::string(state.argument) : "";
  }
  return text + (next() == -1 ? "" : " goes on");
}

template <class Answer>
std::string show(const std::optional<Answer>& answer, std::string (*text)(Answer)) {
  return answer ? text(*answer) : "nothing";
}

std::string cut(const std::string& text, std::size_t size) {
  std::string buffer(size, '?');
  const std::size_t length = copyCut(text, buffer.data(), size);
  EXPECT_EQ('\0', buffer[length]);
  return buffer.substr(0, length);
}

TEST(Host, AnswersItsCases) {
  using A = const Arguments&;
  expectCases(
      MIREL_HOST "/cases.txt",
      {
          {"options", options},
          {"adapt", [](A a) { return adaptStatement(a[2], dialectOf(a[0], a[1])).value_or("as it is"); }},
          {"quoted", [](A a) { return QuotedNames(a[1], dialectOf(a[0], "")).include(a[2]) ? "yes" : "no"; }},
          {"cut", [](A a) { return cut(a[0], std::stoul(a[1])); }},
          {"processors",
           [](A a) {
             return show<ProcessorSet>(parseProcessors(a[0]), [](ProcessorSet set) {
               return std::to_string(set.count) + " from " + std::to_string(set.first);
             });
           }},
          {"megahertz", [](A a) { return show<long>(parseMegahertz(a[0]), std::to_string); }},
          {"memory", [](A a) { return show<long>(memoryField(a[0], "M"), std::to_string); }},
          {"swaps",
           [](A a) {
             return show<SwapSpace>(
                 parseSwaps("Filename Type Size Used Priority\n" + a[0]),
                 [](SwapSpace swap) { return std::to_string(swap.total) + " " + std::to_string(swap.free); });
           }},
          {"name", [](A a) { return prettyName("PRETTY_NAME=" + a[0]).value_or("nothing"); }},
      });
}

}  // namespace
