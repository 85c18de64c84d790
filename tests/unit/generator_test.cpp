#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

/// What each kind of command and key gives stands in the golden runs "commands" and "queries".
class Template : public PlatformTest {
 protected:
  std::string evaluate(const char* text, const char* database = "") {
    JsonParser parser;
    const std::unique_ptr<Value> root(parser.parse(text));
    Generator generator;
    generator.set(database, &customer);
    root->accept(generator);
    return compact(root.get());
  }

  CustomerCollector customer;
};

TEST_F(Template, SplitsAtSingleBlanksOnly) {
  constexpr unsigned long all = mirel_string::npos;
  const struct {
    const char* text;
    unsigned long limit;
    const char* words;
  } rows[] = {
      {"", all, "<>"},
      {"   ", all, "<>"},
      {"one", all, "<one>"},
      {"a b ", all, "<a><b><>"},
      {"  a   b", all, "<a><b>"},
      {"a\tb c", all, "<a\tb><c>"},
      {"\"a b\" \\ c", all, "<\"a><b\"><\\><c>"},
      {"a  b  c  ", 1, "<a><b  c  >"},
      {"a b c d", 2, "<a><b><c d>"},
      {" a b", 0, "<a b>"},
      {"execute ", 1, "<execute><>"},
  };
  for (const auto& [text, limit, expected] : rows) {
    std::string words;
    for (const mirel_string& word : Generator::split_args(text, limit))
      words += std::string("<") + word.c_str() + '>';
    EXPECT_EQ(expected, words) << text << " / " << limit;
  }
}

// A query that fails costs its own member and nothing beside it.
TEST_F(Template, FailingQueryLeavesItsNeighboursIntact) {
  platform.answer("select 1 as a", {{"A"}, {"1"}});
  platform.refuse("select b", {"no such column"});
  EXPECT_EQ(
      R"({"a": "1", "b": [], "c": null, "d": {}, "e": "1"})",
      evaluate(R"({"a": "sql value a select 1 as a", "b": "sql array select b", "c": "sql value b select b",
                         "d": "sql one select b", "e": "sql value a select 1 as a"})",
               "SAMPLE"));
  const std::string report = "Trying to run: Exec Direct\nno such column\n";
  EXPECT_EQ(report + report + report, standardError());
}

TEST_F(Template, WithoutAConnectionThereIsNoDatabaseToExpand) {
  const char* program = R"({"$foreach db [x]": {"n": "native db name"}, "a": "sql array q"})";
  EXPECT_EQ(R"({"x": [], "a": []})", evaluate(program, "X"));
  EXPECT_EQ("", platform.calls(FakePlatform::sql));
  platform.fail("SQLConnect");
  EXPECT_EQ(R"({"x": [], "a": []})", evaluate(program, "SAMPLE"));
  EXPECT_EQ("Trying to run: Connect\nSQLConnect failed\n", standardError());
  platform.fail("SQLConnect", 1, SQL_SUCCESS_WITH_INFO);
  platform.fail("SQLConnect", 1, SQL_SUCCESS_WITH_INFO);
  EXPECT_EQ(R"({"x": [{"n": "XY"}]})", evaluate(R"({"$foreach db [x]": {"n": "native db name"}})", "xy"));
}

// The name goes through a record of 256 bytes.
TEST_F(Template, DatabaseNameIsCutToTheDirectoryEntry) {
  const std::string name(300, 'n');
  EXPECT_EQ(R"({"x": [{"n": ")" + std::string(255, 'N') + R"("}]})",
            evaluate(R"({"$foreach db [x]": {"n": "native db name"}})", name.c_str()));
}

TEST_F(Template, SubTemplateCanBeEvaluatedAgain) {
  Generator generator;
  generator.set("", &customer);
  const KeyValuePair pair("k", object({{"n", text("native os name")}, {"v", nullptr}}));
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(R"({"n": "Linux", "v": null})", compactOf(generator.cloneAndRun(&pair)));
  EXPECT_EQ(R"({"n": "native os name", "v": null})", compact(pair.getValue()));
}
