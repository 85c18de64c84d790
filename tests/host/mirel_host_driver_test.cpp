// The adapter on a driver that does what real ones may do (tests/odbc/).

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/cases.h"
#include "tests/host/mirel_host_sqlcli.h"

namespace {

/// How a driver may take to being asked for several rows at a time; the first gives one at a time.
const char* const WAYS[] = {"blocks=refused", "",        "blocks=one",         "blocks=unbound",
                            "blocks=abrupt",  "streams", "blocks=unpositioned"};

class Driver : public Connected {
 protected:
  Driver() {
    std::ofstream(m_ini) << "[SCRIPTED]\nDriver = " MIREL_ODBC_DRIVER "\n";
    setenv("ODBCINI", m_ini.c_str(), 1);
    setenv("MIREL_DRIVER_LOG", m_log.c_str(), 1);
  }
  ~Driver() override {
    std::filesystem::remove(m_ini);
    std::filesystem::remove(m_log);
    unsetenv("MIREL_DRIVER_LOG");
    unsetenv("MIREL_DRIVER_REFUSES");
  }

  /// The lines of the driver's log that begin so.
  std::vector<std::string> calls(const std::string& beginning) const {
    std::vector<std::string> found;
    std::ifstream log(m_log);
    for (std::string line; std::getline(log, line);)
      if (line.starts_with(beginning))
        found.push_back(line);
    return found;
  }

  /// The same in every way: the rows, and what the last fetch answered.
  std::string rows(const std::string& words) {
    const auto rowsOf = [&](const std::string& way) {
      const std::string all = query("script " + way + " " + words);
      return all + "\n" + std::to_string(m_end);
    };
    const std::string result = rowsOf(WAYS[0]);
    for (const char* way : WAYS)
      EXPECT_EQ(result, rowsOf(way)) << way;
    return result;
  }

  const std::string m_ini = testing::TempDir() + "mirel_scripted." + std::to_string(getpid());
  const std::string m_log = m_ini + ".log";
};

TEST_F(Driver, ResultsAreTheSameHoweverTheyAreFetched) {
  ASSERT_EQ(SQL_SUCCESS, connect("SCRIPTED"));
  expectCases(MIREL_HOST "/driver_cases.txt", {{"rows", [&](const Arguments& a) { return rows(a[0]); }}});
  std::string numbers = "; N";
  for (int i = 0; i < 2500; ++i)
    numbers += "; " + std::to_string(i);
  rows(numbers);
  std::filesystem::remove(m_log);
  query("script " + numbers);
  EXPECT_EQ(1 + 3 + 1, calls("SQLFetch").size());
  freeHandles();
}

// It stayed with us, so that no driver ever learned of it.
TEST_F(Driver, TheQueryPatrollerIsBypassedWhereThereIsOne) {
  for (const char* refused : {"0", "2466"}) {
    setenv("MIREL_DRIVER_REFUSES", refused, 1);
    EXPECT_EQ(SQL_SUCCESS, connect("SCRIPTED"));
    EXPECT_EQ("A=1", query("script ; A; 1"));
    freeHandles();
  }
  const std::string set = "SQLSetConnectAttr 2466 3 -5", connected = "SQLConnect SCRIPTED";
  const std::vector<std::string> both = {set, connected, set, connected};
  std::vector<std::string> found = calls("SQL");
  std::erase_if(found, [&](const std::string& line) { return std::ranges::count(both, line) == 0; });
  EXPECT_EQ(both, found);
}

// Only the first 64 were told.
TEST_F(Driver, EveryDiagnosticIsTold) {
  connect("SCRIPTED");
  const std::string report = query("script exec=-1 messages=1000");
  EXPECT_EQ(1000, std::ranges::count(report, '\n'));
  EXPECT_TRUE(report.ends_with("message 1000\n100")) << report;
  freeHandles();
}

// The driver manager does not free a statement with a call under way.
TEST_F(Driver, AStatementThatDoesNotEndIsCancelled) {
  connect("SCRIPTED");
  for (const char* words : {"exec=99; A; 1", "fetch=99; A; 1", "exec=101", "; A; 1"})
    query(std::string("script ") + words);
  EXPECT_EQ(3, calls("SQLCancel").size());
  EXPECT_EQ(4, calls("SQLFreeHandle 3").size());
  freeHandles();
}

}  // namespace
