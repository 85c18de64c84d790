#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>

#include "driver/mirel_driver_run.h"
#include "tests/unit/fake_platform.h"

using WholeRun = PlatformTest;

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

std::string contentsOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

Lines linesOf(const std::string& text) {
  std::istringstream stream(text);
  Lines lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

/// "? statement" and the lines of its table, "$ command" and its output, "< path" and the file's content.
void prepare(FakePlatform& platform, const Lines& answers) {
  std::string* text = nullptr;
  FakePlatform::Table* table = nullptr;
  for (const std::string& line : answers) {
    const std::string name = line.substr(std::min<std::size_t>(2, line.size()));
    if (line.starts_with("? ")) {
      table = &platform.statements[name].table;
      text = nullptr;
    } else if (line.starts_with("$ ") || line.starts_with("< ")) {
      text = line[0] == '$' ? &platform.commands[name] : &platform.files[name];
    } else if (text != nullptr) {
      *text += line + '\n';
    } else {
      table->push_back(FakePlatform::cells(line, '|'));
    }
  }
}

/// What is in one only, by the longest sequence of lines that both have: "-" the first, "+" the second.
std::string difference(const Lines& first, const Lines& second) {
  const std::size_t rows = first.size(), columns = second.size();
  std::vector<std::vector<int>> alike(rows + 1, std::vector<int>(columns + 1));
  for (std::size_t i = rows; i-- > 0;)
    for (std::size_t j = columns; j-- > 0;)
      alike[i][j] =
          first[i] == second[j] ? alike[i + 1][j + 1] + 1 : std::max(alike[i + 1][j], alike[i][j + 1]);
  std::string text;
  for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
    if (i < rows && j < columns && first[i] == second[j]) {
      ++i, ++j;
    } else if (j == columns || (i < rows && alike[i + 1][j] >= alike[i][j + 1])) {
      text += "- " + first[i++] + '\n';
    } else {
      text += "+ " + second[j++] + '\n';
    }
  }
  return text;
}

/// A run as its folder prepares it, with `faults` such as "SQLFetch 2 -1 popen 1 -1": calls, nths, codes.
std::map<std::string, std::string> runIn(const fs::path& folder, const std::string& faults) {
  FakePlatform platform;
  prepare(platform, linesOf(contentsOf(folder / "answers")));
  for (const char* response : {"response-1", "response-2"})
    platform.responses.push_back({contentsOf(folder / response)});
  std::istringstream stream(faults);
  std::string call;
  for (long nth, code; stream >> std::quoted(call) >> nth >> code;)
    platform.fail(call, nth, code);
  Lines arguments = linesOf(contentsOf(folder / "arguments"));
  arguments.insert(arguments.begin(), "mirel");
  std::vector<char*> pointers(arguments.size() + 1);
  std::ranges::transform(arguments, pointers.begin(), [](std::string& word) { return word.data(); });
  EXPECT_EQ(0, run(static_cast<int>(arguments.size()), pointers.data()));
  EXPECT_EQ("", platform.open()) << folder << ' ' << faults;
  std::string sent;
  for (const std::string& request : platform.sent)
    sent += request;
  return {{"calls", platform.calls()}, {"sent", sent}, {"written", platform.files["/o"]}};
}

}  // namespace

// Golden runs: each folder holds the arguments, what the platform answers, and what has to come of it: both
// outputs, the calls in order, the bytes sent and written; and for each line of "faults" what it changes in
// them. MIREL_UPDATE_GOLDEN=1 writes the results anew; look at the difference before you keep it.
TEST_F(WholeRun, EndsLikeTheGoldenOnes) {
  for (const auto& entry : fs::directory_iterator(MIREL_UNIT "/golden")) {
    const fs::path& folder = entry.path();
    const auto results = [&](const std::string& faults) {
      auto texts = runIn(folder, faults);
      texts["output"] = standardOutput();
      texts["errors"] = standardError();
      return texts;
    };
    auto expected = results("");
    const auto undisturbed = expected;
    for (const std::string& faults : linesOf(contentsOf(folder / "faults"))) {
      expected["failures"] += "--- " + faults + '\n';
      for (const auto& [file, text] : results(faults))
        expected["failures"] += difference(linesOf(undisturbed.at(file)), linesOf(text));
    }
    for (const auto& [file, text] : expected) {
      if (getenv("MIREL_UPDATE_GOLDEN") != nullptr && !text.empty())
        std::ofstream(folder / file) << text;
      EXPECT_EQ(contentsOf(folder / file), text) << folder / file;
    }
  }
}
