#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "driver/mirel_driver_delivery.h"
#include "driver/mirel_driver_run.h"
#include "tests/unit/fake_platform.h"

using WholeRun = PlatformTest;

namespace {

using Arguments = std::vector<std::string>;

template <class Action>
auto with(Arguments arguments, Action action) {
  std::vector<char*> pointers = {const_cast<char*>("mirel")};
  for (std::string& argument : arguments)
    pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return action(static_cast<int>(pointers.size()) - 1, pointers.data());
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

Arguments linesOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  Arguments lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

/// "? statement" and the lines of its table, "$ command" and its output, "< path" and the file's content.
void prepare(FakePlatform& platform, const Arguments& answers) {
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
      std::istringstream cells(line);
      table->emplace_back();
      for (std::string cell; std::getline(cells, cell, '|');)
        table->back().push_back(cell == "NULL" ? null : cell);
    }
  }
}

}  // namespace

TEST_F(WholeRun, EndsSilentlyUnlessAskedForSupport) {
  const std::pair<Arguments, const char*> rows[] = {
      {{}, ""},
      {{"-d", "SAMPLE", "-o", "/f", "-s", "-h", "h", "-e", "e"}, ""},
      {{"--bogus", "-x", "-d", "X"}, "unknown argument: --bogus\nunknown argument: -x\n"},
      {{"-d"}, "unknown argument: -d\n"},
  };
  for (const auto& [arguments, output] : rows) {
    platform.forgetCalls();
    EXPECT_EQ(0, with(arguments, run));
    EXPECT_EQ(output, standardOutput());
    EXPECT_EQ(platform.count("sqlogopt(\"d:o:sh:p:ze:n:c:i:r:t:a:\")") + 2,
              platform.count("") - platform.count("_oss"));
  }
}

TEST_F(WholeRun, SendModeWithoutAServerEndsWithTheReadersReport) {
  platform.fail("sqloPdbTcpIpResolveHostName", 0);
  EXPECT_EXIT((printOnRealError(), with({"-z", "-s"}, run)), testing::ExitedWithCode(255),
              testing::Eq("Downloading tarnconfig.json from ...\nfailed to get hostname\nDone.\n"
                          "Expecting one of: (\"{\", \"[\"); Actual: string \"\" on line 1 column 1\n"));
}

TEST_F(WholeRun, ResultFileHoldsExactlyTheText) {
  const std::string open = "open(stamp, \"/f\", 16, 2, 1, 420, 0)\n";
  const std::string write = "write(stamp, \"{}\", 2, 0)\n";
  const struct {
    const char *failing, *output, *file;
    std::string calls;
  } rows[] = {
      {"nothing", "{}\n\nWritten to file: /f\n", "{}", open + write + "sync()\nclose()\n"},
      {"open", "{}\n\nThere was an error writing to file.\n", "old", open},
      // A write that fails is told by nobody: what counts is how the file was closed.
      {"write", "{}\n\nWritten to file: /f\n", "", open + write + "close()\n"},
      {"sync", "{}\n\nWritten to file: /f\n", "{}", open + write + "sync()\nclose()\n"},
      {"close", "{}\n\nThere was an error writing to file.\n", "{}", open + write + "sync()\nclose()\n"},
  };
  for (const auto& [failing, output, file, calls] : rows) {
    platform.files["/f"] = "old";
    platform.heal();
    platform.forgetCalls();
    platform.fail(failing);
    writeResult("{}", false, "", 0, true, "/f");
    EXPECT_EQ(output, standardOutput()) << failing;
    EXPECT_EQ(file, platform.files["/f"]) << failing;
    EXPECT_EQ(calls, platform.calls(FakePlatform::file)) << failing;
  }
  writeResult("{}", false, "", 0, false, "/f");
  EXPECT_EQ("\nWritten to file: /f\n", standardOutput());
}

// Golden runs: each folder holds the arguments, what the platform answers, and what has to come of it: the
// standard output, the calls in order, the bytes sent. MIREL_UPDATE_GOLDEN=1 writes the latter three anew;
// look at the difference before you keep it.
TEST_F(WholeRun, EndsLikeTheGoldenOnes) {
  for (const auto& folder : std::filesystem::directory_iterator(MIREL_GOLDEN)) {
    FakePlatform prepared;
    prepare(prepared, linesOf(folder.path() / "answers"));
    for (const char* response : {"response-1", "response-2"})
      prepared.responses.push_back({contentsOf(folder.path() / response)});
    EXPECT_EQ(0, with(linesOf(folder.path() / "arguments"), run));
    std::map<const char*, std::string> results = {{"calls", prepared.calls(FakePlatform::every)}};
    results["output"] = standardOutput();
    for (const std::string& request : prepared.sent)
      results["sent"] += request;
    for (const auto& [file, text] : results) {
      if (getenv("MIREL_UPDATE_GOLDEN") != nullptr)
        std::ofstream(folder.path() / file) << text;
      EXPECT_EQ(contentsOf(folder.path() / file), text) << folder.path() / file;
    }
    EXPECT_EQ("", prepared.open() + standardError()) << folder.path();
  }
}
