#include "json/mirel_json_writer.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

using JsonValue = PlatformTest;
using JsonWriter = PlatformTest;

TEST_F(JsonValue, LookupFindsTheFirstExactKey) {
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

TEST_F(JsonValue, CloneSharesNothing) {
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

TEST_F(JsonWriter, LaysOutByFixedRules) {
  const struct {
    Value* tree;
    const char* expected;
  } rows[] = {
      {text("x"), R"("x")"},
      {object({}), "{\n\n}"},
      {array({object({})}), "[\n  {\n\n  }\n]"},
      {array({nullptr, array({})}), "[\n  \"null\",\n  [\n\n  ]\n]"},
      {object({{"a", text("1")}, {"b", array({text("x")})}, {"c", object({{"d", text("e")}})}}),
       "{\n  \"a\": \"1\",\n  \"b\": [\n    \"x\"\n  ],\n  \"c\": {\n    \"d\": \"e\"\n  }\n}"},
  };
  for (const auto& [tree, expected] : rows) {
    EXPECT_STREQ(expected, tree->stringify(0).c_str());
    EXPECT_EQ(expected, (std::ostringstream() << tree).str());
    EXPECT_EQ(expected, (std::ostringstream() << *tree).str());
    delete tree;
  }
  const std::unique_ptr<Value> nested(array({text("x")}));
  EXPECT_STREQ("[\n      \"x\"\n    ]", nested->stringify(2).c_str());
  EXPECT_STREQ("    ", indent(2).c_str());
  EXPECT_STREQ("", indent(0).c_str());
}

TEST_F(JsonWriter, EscapesFourCharactersInTextsAndKeys) {
  const std::pair<const char*, const char*> rows[] = {{"a\"b\\", R"(a\"b\\)"},
                                                      {"\n\r", R"(\n\r)"},
                                                      {"\\n", R"(\\n)"},
                                                      {"\t/\x01\xC3", "\t/\x01\xC3"},
                                                      {"", ""}};
  for (const auto& [plain, escaped] : rows) {
    EXPECT_STREQ(escaped, escapeJson(plain).c_str());
    const std::string quoted = std::string("\"") + escaped + '"';
    const std::unique_ptr<Value> tree(object({{plain, text(plain)}}));
    EXPECT_EQ("{\n  " + quoted + ": " + quoted + "\n}", tree->stringify(0).c_str());
  }
}

// The reverse is not the inverse: doubled backslashes collapse first, and letter case is ignored.
TEST_F(JsonWriter, UndoesEscapesOneKindAfterTheOther) {
  const std::pair<const char*, const char*> rows[] = {
      {R"(say \"hi\"\r\n)", "say \"hi\"\r\n"},
      {R"(\N\R)", "\n\r"},
      {R"(\\n\\R\\")", "\n\r\""},
      {R"(\t\/\u0041)", R"(\t\/\u0041)"},
      {R"(a\\b)", R"(a\b)"},
      {R"(\\\)", R"(\\\)"},
      {R"(\\\\)", R"(\\\\\\)"},
  };
  for (const auto& [escaped, plain] : rows)
    EXPECT_STREQ(plain, reverseEscape(escaped).c_str()) << escaped;
}
