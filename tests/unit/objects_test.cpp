// What is more than a function of its arguments: trees, collectors and connections that last.
#include <cstring>

#include "collectors/mirel_collectors_instance.h"
#include "collectors/mirel_collectors_platform.h"
#include "db/mirel_db_connection.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_writer.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

using Objects = PlatformTest;

TEST_F(Objects, LookupFindsTheFirstExactKey) {
  const std::unique_ptr<ObjectValue> tree(
      object({{"a", text("1")}, {"a", text("2")}, {"n", nullptr}, {"n", text("3")}}));
  EXPECT_EQ("\"1\"", compact(tree->search("a")));
  EXPECT_EQ("\"1\"", compact((*tree)["a"]));
  for (const char* key : {"A", "n", "x", ""})
    EXPECT_EQ("{}", compactOf(tree->search(key))) << key;
  EXPECT_TRUE(tree->hasKey("n"));
  EXPECT_FALSE(tree->hasKey("A"));
  EXPECT_EQ(nullptr, (*tree)[0UL]);
  const std::unique_ptr<ArrayValue> elements(array({text("0"), text("1")}));
  EXPECT_EQ("\"1\"", compact((*elements)[1UL]));
  EXPECT_EQ(nullptr, (*elements)[mirel_string("0")]);
}

TEST_F(Objects, CloneSharesNothing) {
  auto outer = std::make_unique<ObjectValue>("outer");
  auto* inner = new ObjectValue("inner");
  inner->addValue(new KeyValuePair("k", "v"));
  outer->addObject(inner);
  outer->addValue(new KeyValuePair("a", array({text("1"), nullptr, object({})})));
  const std::unique_ptr<ObjectValue> copy(outer->clone());
  outer.reset();
  EXPECT_EQ(R"({"inner": {"k": "v"}, "a": ["1", null, {}]})", compact(copy.get()));
  EXPECT_STREQ("outer", copy->getName().c_str());
}

TEST_F(Objects, AreLaidOutByFixedRules) {
  const std::unique_ptr<Value> tree(
      object({{"a\"b\\", text("1\n")}, {"b", array({object({}), nullptr, array({})})}, {"c", object({})}}));
  const char* expected =
      "{\n  \"a\\\"b\\\\\": \"1\\n\",\n  \"b\": [\n    {\n\n    },\n    \"null\",\n    [\n\n    ]\n  ],\n"
      "  \"c\": {\n\n  }\n}";
  EXPECT_STREQ(expected, tree->stringify(0).c_str());
  EXPECT_EQ(expected, (std::ostringstream() << tree.get()).str());
  EXPECT_EQ(expected, (std::ostringstream() << *tree).str());
  const std::unique_ptr<Value> nested(array({text("x")}));
  EXPECT_STREQ("[\n      \"x\"\n    ]", nested->stringify(2).c_str());
  EXPECT_STREQ("\"x\"", (*nested)[0UL]->stringify(2).c_str());
  EXPECT_STREQ("    ", indent(2).c_str());
}

TEST_F(Objects, ValueThatIsNotAvailableIsNull) {
  platform.os.name.status = platform.cpu.speed.status = platform.disk.free.status = 7;
  platform.cpu.total.value = -1;
  platform.disk.total.value = 0x7FFFFFFFFFFFFFFF;
  PlatformCollector host;
  host.collect();
  EXPECT_STREQ("null", host.collect_os("name").c_str());
  EXPECT_STREQ("x86_64", host.collect_os("machine").c_str());
  EXPECT_STREQ("null", host.collect_cpu("speed").c_str());
  EXPECT_STREQ("-1", host.collect_cpu("total").c_str());
  EXPECT_STREQ("null", host.collect_disk("free").c_str());
  EXPECT_STREQ("9223372036854775807", host.collect_disk("total").c_str());
}

// The configuration record stays as it is when the next database's file cannot be read.
TEST_F(Objects, DatabaseKeepsTheLastConfigurationThatCouldBeRead) {
  platform.files["/db/SAMPLE/member/SQLDBCONF"] = std::string(40, '\xFF');
  InstanceCollector instance;
  katoDbDirInfoV9 entry = {"sample    ", {}};
  instance.setDb(&entry);
  EXPECT_STREQ("sample", instance.database("name").c_str());
  std::memset(entry.alias, 'X', sizeof entry.alias);
  instance.setDb(&entry);
  EXPECT_EQ(std::string(256, 'X'), instance.database("name").c_str());
  EXPECT_STREQ("4294967295", instance.database("seed").c_str());
}

TEST_F(Objects, ConnectionRunsAStatementAndLeavesItAllocated) {
  DBConnection connection;
  EXPECT_FALSE(connection.exec("s"));
  EXPECT_EQ(0U, connection.NumTables());
  EXPECT_EQ("Trying to run: alloc stmt\nSQLAllocHandle failed\n", standardError());
  EXPECT_EQ(SQL_SUCCESS, connection.connect("SAMPLE"));
  platform.answer("SQLTables", {{"T"}, {"a"}, {"b"}});
  EXPECT_EQ(2U, connection.NumTables());
  EXPECT_EQ(1, platform.count("SQLTables(3, null, 0, null, 0, null, 0, \"TABLE\", -3)"));
  platform.fail("SQLTables");
  EXPECT_EQ(0U, connection.NumTables());
  EXPECT_EQ("Trying to run: SQLTables\nSQLTables failed\n", standardError());
  platform.answer("s", {{}});
  EXPECT_TRUE(connection.exec("s"));
  EXPECT_EQ("connection 1, environment 1, statement 1", platform.open());
  EXPECT_EQ(SQL_SUCCESS, connection.freeStmt());
  EXPECT_FALSE(connection.exec("unknown"));
  EXPECT_EQ("Trying to run: Exec Direct\nunprepared: unknown\n", standardError());
  EXPECT_EQ(SQL_SUCCESS, connection.freeStmt());
  EXPECT_TRUE(connection.disconnect());
  EXPECT_FALSE(connection.connected() || connection.disconnect());
}

// The name of the database goes through a record of 256 bytes.
TEST_F(Objects, DatabaseNameIsCutToTheDirectoryEntry) {
  const std::string name(300, 'n');
  Generator generator;
  CustomerCollector customer;
  generator.set(name.c_str(), &customer);
  const std::unique_ptr<Value> root(JsonParser().parse(R"({"$foreach db [x]": {"n": "native db name"}})"));
  root->accept(generator);
  EXPECT_EQ(R"({"x": [{"n": ")" + std::string(255, 'N') + R"("}]})", compact(root.get()));
}

TEST_F(Objects, DirectoryScanGoesFromEntryToEntry) {
  DbDirectoryScan scan;
  scan.open();
  EXPECT_EQ(1, scan.numberDbs());
  EXPECT_EQ(&platform.directoryEntry, scan.next());
  platform.fail("katoDbDirGetNextEntry");
  EXPECT_EQ(nullptr, scan.next());
  EXPECT_EQ(0, scan.close());
  EXPECT_EQ(2, platform.count("katoDbDirGetNextEntry(9000000, 5)"));
  platform.fail("katoDbDirOpenScan");
  scan.open();
  EXPECT_EQ(0, scan.numberDbs());
}
