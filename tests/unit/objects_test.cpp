// What is more than a function of its arguments: trees, collectors and connections that last.
#include <gmock/gmock.h>

#include <cstring>

#include "collectors/mirel_collectors_instance.h"
#include "common/mirel_common_memory.h"
#include "db/mirel_db_connection.h"
#include "driver/mirel_driver_delivery.h"
#include "generator/mirel_generator_walk.h"
#include "http/mirel_http_socket.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_writer.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

using Objects = PlatformTest;

TEST_F(Objects, MembersAreFoundCopiedAndWritten) {
  auto tree = std::make_unique<ObjectValue>("outer");
  auto* elements = new ArrayValue;
  elements->push_back(new PrimitiveValue("1"));
  elements->push_back(nullptr);
  tree->addValue(new KeyValuePair("a", elements));
  tree->addObject(new ObjectValue("a"));
  tree->addValue(new KeyValuePair("n", static_cast<Value*>(nullptr)));
  tree->addValue(new KeyValuePair("n", "3"));
  EXPECT_EQ(elements, tree->search("a"));
  EXPECT_EQ("\"1\"", compact((*(*tree)["a"])[0UL]));
  for (const char* key : {"A", "n", "x", ""})
    EXPECT_EQ("{}", compactOf(tree->search(key))) << key;
  EXPECT_TRUE(tree->hasKey("n") && !tree->hasKey("A"));
  EXPECT_TRUE((*tree)[0UL] == nullptr && (*elements)[mirel_string("0")] == nullptr);
  const std::unique_ptr<ObjectValue> copy(tree->clone());
  tree.reset();
  EXPECT_EQ(R"({"a": ["1", null], "a": {}, "n": null, "n": "3"})", compact(copy.get()));
  EXPECT_STREQ("outer", copy->getName().c_str());
  const std::string text =
      "{\n  \"a\": [\n    \"1\",\n    \"null\"\n  ],\n  \"a\": {\n\n  },\n  \"n\": \"null\",\n  \"n\": "
      "\"3\"\n}";
  EXPECT_EQ(text + text, (std::ostringstream() << copy.get() << *copy).str());
  EXPECT_STREQ("\"a\\\"\"    ", (PrimitiveValue("a\"").stringify(1) + indent(2)).c_str());
}

TEST_F(Objects, ParserGoesOnBehindTheRootRuleByRule) {
  JsonParser parser;
  Value* value = parser.parse(R"(["a"] {"k": "v"}["b"] "c\"": {"d": "e"}, "f" , 1)");
  KeyValuePair* pair = nullptr;
  std::string found = compactOf(value);
  found += parser.parseObject(&value) ? compactOf(value) : "";
  found += parser.parseArray(&value) ? compactOf(value) : "";
  EXPECT_TRUE(parser.parsePair(&pair));
  found += pair->getKey().c_str() + compact(pair->getValue());
  delete pair;
  parser.skipWhitespace();
  EXPECT_TRUE(!parser.nextTokenIs(tokenString) && parser.nextTokenIs(tokenComma) && parser.consume());
  found += parser.parseValue(&value) ? compactOf(value) : "";
  EXPECT_EQ(R"(["a"]{"k": "v"}["b"]c"{"d": "e"}"f")", found);
  EXPECT_TRUE(parser.nextTokenIs(static_cast<JsonTokenType>(4)) && parser.consume());
  const Token token = parser.token();
  EXPECT_TRUE(!parser.nextTokenIs(tokenString) && token.text == TokenStrings[tokenComma] &&
              token.length == 1);
  const std::vector<JsonTokenType> expected = {tokenColon, tokenString};
  EXPECT_EQ(255, exitStatusOf([&] { parser.printParseError(expected, token.type, token.text, 2, 4); }));
  EXPECT_EQ("Expecting one of: (\":\", \"string\"); Actual: \",\" on line 2 column 5\n", standardOutput());
}

TEST_F(Objects, MemberThatIsRenamedIsWrittenWithItsNewKey) {
  const std::unique_ptr<Value> root(JsonParser().parse(R"({"a": "b"})"));
  dynamic_cast<ObjectValue&>(*root).getValues().front()->setKey("\"\n");
  EXPECT_STREQ("{\n  \"\\\"\\n\": \"b\"\n}", root->stringify(0).c_str());
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
  EXPECT_TRUE(connection.disconnect());
  EXPECT_FALSE(connection.connected() || connection.disconnect());
}

TEST_F(Objects, ResponseNeedsNoRoomForWhatItOnlyAnnounces) {
  const char response[] = "HTTP/1.1 200 OK\r\nContent-Length: 99999999\r\n\r\nshort";
  platform.responses = {{response}};
  platform.fail("_ossMemAlloc(1000000");
  const MemoryWatch memory;
  Socket socket;
  EXPECT_TRUE(socket.open("h", 1));
  EXPECT_STREQ(response, socket.recv().c_str());
  EXPECT_TRUE(socket.close());
  EXPECT_TRUE(platform.count("_ossMemAlloc(1000000") == 1 && !memory.ranOut());
}

TEST_F(Objects, ExchangeSetsTheSocketLayerUpAndEndsIt) {
  platform.responses = {{"HTTP/1.1 200 OK\r\n\r\n{}"}, {"thanks"}};
  EXPECT_STREQ("{}", readConfig(true, "h", 1).c_str());
  EXPECT_EQ("communication 1", platform.open());
  writeResult("{}", true, "h", 1, true, "/f");
  EXPECT_THAT(standardOutput(), testing::EndsWith("\nthanks\n------------------------------\n"));
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
