#include <cstring>
#include <functional>
#include <memory>

#include "collectors/mirel_collectors_native.h"
#include "collectors/mirel_collectors_system.h"
#include "tests/unit/fake_platform.h"

using System = PlatformTest;
using DirectoryScan = PlatformTest;

class Native : public PlatformTest {
 protected:
  /// Each pair: an item of the collector word, the expected fact.
  void expect(const char* word, const std::vector<std::pair<const char*, const char*>>& rows) const {
    for (const auto& [item, expected] : rows) {
      mirel_string fact = "no such word";
      nativeFact({&instance, &host, &customer}, word, item, &fact);
      EXPECT_STREQ(expected, fact.c_str()) << word << ' ' << item;
    }
  }

  InstanceCollector instance;
  PlatformCollector host;
  CustomerCollector customer;
};

// What the default template asks for stands in the golden documents.
TEST_F(Native, AnswersWhatNoTemplateAsks) {
  expect("db", {{"name", ""}, {"seed", "0"}, {"cfgraw", "null"}});
  expect("table",
         {{"name", "dummyTable"}, {"rows", "0"}, {"columns", "0"}, {"organization", "R"}, {"", "null"}});
  expect("customer", {{"name", "null"}, {"Name", "null"}});
  expect("instance", {{"numdbs", "0"}, {"NUMDBS", "null"}});
  for (const char* word : {"version", "os", "cpu", "pmemory", "vmemory", "swap"})
    expect(word, {{"", "null"}, {"Total", "null"}, {"Version", "null"}});
  expect("pmemory", {{"reserved", "null"}});
  for (const char* word : {"disk", "network", "readFile"})
    expect(word, {{"", ""}, {"Total", ""}});
  for (const char* word : {"OS", "disks", ""})
    expect(word, {{"name", "no such word"}});
}

TEST_F(Native, GroupWhoseQueryFailsAnswersItsDefault) {
  const struct {
    const char *query, *word, *item, *known, *failed;
  } rows[] = {
      {"ossGetOSInfo", "os", "fullname", "Some Linux 12", "null"},
      {"ossGetCPUInfo", "cpu", "cores", "4", "null"},
      {"ossGetPhysMemInfo", "pmemory", "free", "1002", "null"},
      {"ossGetVirtualMemInfo", "vmemory", "free", "2004", "null"},
      {"ossGetPhysSwapInfo", "swap", "free", "3002", "null"},
      {"ossGetDiskInfo", "disk", "free", "4002", ""},
  };
  for (const auto& [query, word, item, known, failed] : rows) {
    platform.fail(query, 1, OSS_SYSINFO_PARTIAL);
    host.collect();
    expect(word, {{item, known}});
    platform.fail(query, 1, OSS_SYSINFO_PARTIAL + 1);
    host.collect();
    expect(word, {{item, failed}});
  }
  platform.databases = {"SAMPLE"};
  platform.fail("sqleGetLevelInfo");
  platform.fail("katoDbDirOpenScan");
  instance.collect();
  expect("version", {{"fixpack", "0"}, {"ptf", ""}});
  expect("instance", {{"numdbs", "0"}});
}

TEST_F(Native, ValueThatIsNotAvailableIsNull) {
  platform.os.name.status = platform.cpu.speed.status = platform.cpu.coresPerSocket.status =
      platform.physical.available.status = platform.virtualMemory.free.status = platform.swap.total.status =
          platform.disk.free.status = 7;
  platform.cpu.total.value = -1;
  platform.disk.total.value = 0x7FFFFFFFFFFFFFFF;
  host.collect();
  expect("os", {{"name", "null"}, {"machine", "x86_64"}, {"fullname", "Some Linux 12"}});
  expect("cpu", {{"speed", "null"}, {"cores", "null"}, {"total", "-1"}});
  expect("pmemory", {{"available", "null"}, {"free", "1002"}});
  expect("vmemory", {{"free", "null"}, {"total", "2001"}});
  expect("swap", {{"total", "null"}, {"free", "3002"}});
  expect("disk", {{"free", "null"}, {"total", "9223372036854775807"}});
}

// The configuration record stays as it is when the next database's file cannot be read.
TEST_F(Native, DatabaseKeepsTheLastConfigurationThatCouldBeRead) {
  platform.files["/db/SAMPLE/member/SQLDBCONF"] = std::string(40, '\xFF');
  katoDbDirInfoV9 entry = {"sample    ", {}};
  instance.setDb(&entry);
  expect("db", {{"name", "sample"}, {"seed", "4294967295"}});
  std::memset(entry.alias, 'X', sizeof entry.alias);
  instance.setDb(&entry);
  expect("db", {{"name", std::string(256, 'X').c_str()}, {"seed", "4294967295"}});
}

TEST_F(DirectoryScan, HandsOutEntriesUntilThereAreNone) {
  platform.databases = {"SAMPLE  ", "OTHER"};
  DbDirectoryScan scan;
  scan.open();
  EXPECT_EQ(2, scan.numberDbs());
  EXPECT_STREQ("SAMPLE  ", scan.next()->alias);
  EXPECT_STREQ("OTHER", scan.next()->alias);
  EXPECT_EQ(nullptr, scan.next());
  EXPECT_EQ(0, scan.close());
  platform.fail("katoDbDirOpenScan");
  scan.open();
  EXPECT_EQ(0, scan.numberDbs());
  EXPECT_NE(0, scan.close());
  const std::string next = "katoDbDirGetNextEntry(9000000, 5)\n";
  EXPECT_EQ("katoDbDirOpenScan(9000000, null, 0)\n" + next + next + next +
                "katoDbDirCloseScan(9000000, 5)\n" +
                "katoDbDirOpenScan(9000000, null, 0)\nkatoDbDirCloseScan(9000000, 0)\n",
            platform.calls(FakePlatform::admin));
}

TEST_F(DirectoryScan, ActiveDatabasesComeFromTheCommandLineTool) {
  const struct {
    const char* output;
    std::vector<std::string> names;
  } rows[] = {
      {"", {}},
      {"Database name = A", {}},
      {"\nDatabase name = A", {}},
      {"\nDatabase name = A\n", {}},
      {"Database name = X\n\nDATABASE NAME   =   A \nDatabase path = B\nDatabase name=C=D\n", {"A ", "C=D"}},
      {"\n\n\nDatabase name = A", {"A"}},
  };
  for (const auto& [output, names] : rows) {
    platform.commands["kato list active databases"] = output;
    std::vector<std::string> found;
    for (const mirel_string& name : getActiveDatabases())
      found.emplace_back(name.c_str());
    EXPECT_EQ(names, found) << output;
  }
}

TEST_F(System, CommandOutputArrivesWhole) {
  const std::string longLine(300, 'x');
  const struct {
    std::string output, text;
  } rows[] = {
      {"", ""},
      {"one\ntwo \n", "one\ntwo \n"},
      {"no end", "no end"},
      {longLine + '\n', longLine + '\n'},
      {std::string(127, 'x'), std::string(127, 'x')},
      {std::string("a\0b\nc\n", 6), "ac\n"},
  };
  for (const auto& [output, text] : rows) {
    platform.commands["command"] = output;
    EXPECT_EQ(text, executeGet("command").c_str());
  }
  platform.forgetCalls();
  platform.fail("fgets", 2);
  platform.commands["command"] = "one\ntwo";
  EXPECT_STREQ("one\ntwo", executeGet("command").c_str());
  const std::string piece = "feof()\nfgets(128)\n";
  EXPECT_EQ("popen(\"command\", \"r\")\n" + piece + piece + piece + "feof()\npclose()\n",
            platform.calls(FakePlatform::process));
  platform.fail("popen");
  EXPECT_STREQ("ERROR", executeGet("command").c_str());
  platform.fail("pclose");
  EXPECT_STREQ("one\ntwo", executeGet("command").c_str());
  platform.fail("fgets", 0);
  EXPECT_STREQ("", executeGet("command").c_str());
}

TEST_F(System, FilePathsAreExpanded) {
  for (const char* file : {"/f", "/h/f", "/h/h/f", "/opt/kato/f"})
    platform.files[file] = std::string("in ") + file;
  platform.files["/empty"] = "";
  platform.files["/nul"] = std::string("ab\0cd", 5);
  const struct {
    const char *home, *path, *content;
  } rows[] = {
      {"/h", "$HOME/f", "in /h/f"},
      {"/h", "$home$HOME/f", "in /h/h/f"},
      {"/h", "/empty", ""},
      {"/h", "/nul", "ab"},
      {"/h", "/missing", ""},
      {nullptr, "$HOME/f", "in /f"},
      {"", "$HOME/f", "in /f"},
      {"/h", "$INSTANCEPATH/f", "in /opt/kato/f"},
      {"$INSTANCEPATH", "$HOME/f", "in /opt/kato/f"},
  };
  for (const auto& [home, path, content] : rows) {
    platform.home = home;
    EXPECT_STREQ(content, readFile(path).c_str()) << path;
  }
  platform.fail("sqloInstallPath");
  EXPECT_STREQ("in /f", readFile("$INSTANCEPATH/f").c_str());
}

// Every failure gives the empty text; only what went well up to the release closes the file.
TEST_F(System, FileIsReadInOneGo) {
  const std::string open = "open(stamp, \"/f\", 1, 1, 0, 0, 0)\n";
  const struct {
    const char *failing, *content;
    std::string calls;
  } rows[] = {
      {"nothing", "text", open + "getSize()\nread(stamp, 4, 0)\nclose()\n"},
      {"open", "", open},
      {"getSize", "", open + "getSize()\n"},
      {"_ossMemAlloc(5, 1, mirel_collectors_instance:276)", "", open + "getSize()\n"},
      {"read", "", open + "getSize()\nread(stamp, 4, 0)\n"},
      {"_ossMemFree(0, 0, mirel_collectors_instance:289)", "text", open + "getSize()\nread(stamp, 4, 0)\n"},
      {"close", "text", open + "getSize()\nread(stamp, 4, 0)\nclose()\n"},
  };
  platform.files["/f"] = "text";
  for (const auto& [failing, content, calls] : rows) {
    platform.heal();
    platform.forgetCalls();
    platform.fail(failing);
    EXPECT_STREQ(content, readFile("/f").c_str()) << failing;
    EXPECT_EQ(calls, platform.calls(FakePlatform::file)) << failing;
  }
}

TEST_F(System, PathsAndNamesComeFromTheProduct) {
  const struct {
    std::function<mirel_string()> ask;
    const char *answer, *call;
  } rows[] = {
      {getInstallDirectory, "/opt/kato", "sqloInstallPath(1025)\n"},
      {getInstName, "katoinst", "sqloGetInstanceOwnerName(9)\n"},
      {[] { return getGdbPath("sample"); }, "/db/SAMPLE/", "sqlfGetGDBPath(\"SAMPLE\", 1)\n"},
      {[] { return getDbPath("/g/"); }, "/g/member/", "sqlfGetMemberDBPathFromGDBPath(\"/g/\", 7)\n"},
  };
  for (const auto& [ask, answer, call] : rows) {
    platform.forgetCalls();
    EXPECT_STREQ(answer, ask().c_str());
    EXPECT_EQ(call, platform.calls(FakePlatform::admin));
    platform.fail("sql");
    EXPECT_STREQ("", ask().c_str()) << call;
  }
}

// The handle is closed in every case, and the answer is what the close says.
TEST_F(System, ConfigurationFileFillsTheCallersRecord) {
  const std::string open = "sqloopenp(\"/db/SAMPLE/member/SQLDBCONF\", 52, 416, 0, 1)\n";
  const struct {
    const char* failing;
    long code;
    unsigned int seed;
    std::string calls;
  } rows[] = {
      {"nothing", 0, 0x61616161, open + "sqloread(1, 16384)\nsqloclose(1)\n"},
      {"sqloopenp", -9, 5, open + "sqloclose(-1)\n"},
      {"sqloread", 0, 5, open + "sqloread(1, 16384)\nsqloclose(1)\n"},
      {"sqloclose", -1, 0x61616161, open + "sqloread(1, 16384)\nsqloclose(1)\n"},
      {"sqlfGetGDBPath", -9, 5, "sqloopenp(\"member/SQLDBCONF\", 52, 416, 0, 1)\nsqloclose(-1)\n"},
      {"sqlfGetMember", -9, 5, "sqloopenp(\"SQLDBCONF\", 52, 416, 0, 1)\nsqloclose(-1)\n"},
  };
  for (const auto& [failing, code, seed, calls] : rows) {
    FakePlatform fresh;
    fresh.files["/db/SAMPLE/member/SQLDBCONF"] = std::string(40, 'a');
    fresh.fail(failing);
    auto configuration = std::make_unique<sqlf_dbcfd>();
    configuration->seed = 5;
    EXPECT_EQ(code, getDbCfd("sample", configuration.get())) << failing;
    EXPECT_EQ(seed, configuration->seed) << failing;
    EXPECT_EQ(calls, fresh.calls(FakePlatform::file)) << failing;
    EXPECT_EQ("", fresh.open()) << failing;
  }
}
