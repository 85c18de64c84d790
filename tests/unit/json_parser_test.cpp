#include <gmock/gmock.h>
#include <unistd.h>

#include <iostream>

#include "generator/mirel_generator_template.h"
#include "json/mirel_json_parser.h"
#include "tests/unit/fake_platform.h"
#include "tests/unit/values.h"

using Parser = PlatformTest;

namespace {

std::string parsed(const std::string& input) {
  JsonParser parser;
  return compactOf(parser.parse(input.c_str()));
}

}  // namespace

TEST_F(Parser, ReadsObjectsArraysAndTexts) {
  const struct {
    const char *input, *tree;
  } rows[] = {
      {R"({"k": "v"} and more)", R"({"k": "v"})"},
      {R"(["a", ["b", "c"], {"d": "e"}])", R"(["a", ["b", "c"], {"d": "e"}])"},
      {" \r\n\t{ \"a\"\t:\n\"1\" , \"a\":\"2\" }", R"({"a": "1", "a": "2"})"},
      {R"(["say \"hi\"", "\\n\N", "\t\u0041", ""])", "[\"say \"hi\"\", \"\n\n\", \"\\t\\u0041\", \"\"]"},
      {"{}", "{}"},
      {"[]", "[]"},
      // An empty container leaves its bracket to the one around it, which ends there.
      {R"({"a": {}, "b": "c"})", R"({"a": {}})"},
      {R"({"a": {"b": {}, "c": "d"}, "e": "f"})", R"({"a": {"b": {}}, "c": "d"})"},
      {R"([[], "b"])", "[[]]"},
      {R"({"a": {})", R"({"a": {}})"},
      {R"({"a": [{"b": "c"}, []})", R"({"a": [{"b": "c"}, []]})"},
  };
  for (const auto& [input, tree] : rows)
    EXPECT_EQ(tree, parsed(input)) << input;
}

TEST_F(Parser, ReportsWhatItExpectedAndWhatItFound) {
  const struct {
    std::string input, expected, found;
  } rows[] = {
      {R"({"a": 1})", R"("{", "[", "string")", R"(":" on line 1 column 7)"},
      {R"({"a": "b", "c": true})", R"("{", "[", "string")", R"(":" on line 1 column 17)"},
      {R"(["a", null])", R"("{", "[", "string")", R"("," on line 1 column 7)"},
      {R"({"a" "b"})", R"(":")", R"(string "b" on line 1 column 6)"},
      {R"({"a": "b" "c": "d"})", R"(",", "]")", R"(string "c" on line 1 column 11)"},
      {R"(["a" "b"])", R"(",", "]")", R"(string "b" on line 1 column 6)"},
      {R"("x")", R"("{", "[")", R"(string "x" on line 1 column 1)"},
      {R"({["a"]})", R"("string")", R"("[" on line 1 column 2)"},
      {R"({"a": "b", })", R"("string")", R"("}" on line 1 column 12)"},
      {R"(["a", ])", R"("{", "[", "string")", R"("]" on line 1 column 7)"},
      {"{\"a\":\n\n  :}", R"("{", "[", "string")", R"(":" on line 3 column 3)"},
      // Within a text a line end counts as one column, and an escape as all its characters.
      {"{\"a\nb\" \"\"}", R"(":")", R"(string "" on line 1 column 8)"},
      {R"({"\"\n" "x\"y"})", R"(":")", R"(string "x"y" on line 1 column 9)"},
      // A character that begins no token leaves the token before it in place.
      {"x", R"("{", "[")", R"(string "" on line 1 column 1)"},
      {R"({"a"=)", R"(":")", R"(string "a" on line 1 column 5)"},
      // A bracket left over by an empty container is not one that the other kind knows.
      {R"({"a": []})", R"(",", "]")", R"("]" on line 1 column 8)"},
      {R"([{}])", R"(",", "]")", R"("}" on line 1 column 3)"},
      // The input ended; a quote that stands last is read again.
      {"", R"("{", "[")", R"(string "" on line 1 column 1)"},
      {" \n \t ", R"("{", "[")", R"(string "" on line 2 column 4)"},
      {"{", R"("string")", R"("{" on line 1 column 2)"},
      {"[", R"("{", "[", "string")", R"("[" on line 1 column 2)"},
      {R"({")", R"(":")", R"(string "" on line 1 column 4)"},
      {R"({"a)", R"("string")", R"("{" on line 1 column 4)"},
      {R"({"a": "b\")", R"(",", "]")", R"(string "" on line 1 column 12)"},
      {R"({"a": "b" )", R"(",", "]")", R"(string "b" on line 1 column 11)"},
      {R"({"a": "b")", R"(",", "]")", R"(string "" on line 1 column 10)"},
      {R"({"a": {"b": "c"})", R"(",", "]")", R"("}" on line 1 column 17)"},
      // One level too many.
      {std::string(1001, '['), R"("string")", R"("[" on line 1 column 1001)"},
  };
  for (const auto& [input, expected, found] : rows)
    EXPECT_EXIT((printOnRealError(), parsed(input)), testing::ExitedWithCode(255),
                testing::Eq("Expecting one of: (" + expected + "); Actual: " + found + "\n"))
        << input;
}

// Only the token is left from the text before.
TEST_F(Parser, ReadsAThousandLevelsAndStartsOverWithEveryText) {
  JsonParser parser;
  EXPECT_EQ(std::string(999, '[') + "[\"x\"]" + std::string(999, ']'),
            compactOf(parser.parse((std::string(1000, '[') + "\n\"x\"" + std::string(1000, ']')).c_str())));
  EXPECT_EQ(R"(["c"])", compactOf(parser.parse(R"(["c"])")));
  EXPECT_EXIT((printOnRealError(), parser.parse(" ,x")), testing::ExitedWithCode(255),
              testing::Eq("Expecting one of: (\"{\", \"[\"); Actual: \",\" on line 1 column 2\n"));
  EXPECT_EXIT((printOnRealError(), parser.parse("x")), testing::ExitedWithCode(255),
              testing::Eq("Expecting one of: (\"{\", \"[\"); Actual: \"]\" on line 1 column 1\n"));
}

TEST_F(Parser, EndsOnEveryTruncationOfTheDefaultTemplate) {
  const std::string whole = kDefaultTemplate;
  const auto report = [&] {
    bool inText = false;
    printOnRealError();
    for (std::size_t length = 0; length < whole.size(); ++length) {
      std::ostringstream output;
      std::cout.rdbuf(output.rdbuf());
      const int status = exitStatusOf([&] { parsed(whole.substr(0, length)); });
      const std::string line = output.str();
      // A quote that opens a text and stands last closes it, too, and so counts twice.
      const bool quote = length > 0 && whole[length - 1] == '"';
      inText = inText != quote;
      const std::string end =
          " on line 1 column " + std::to_string(length + (quote && inText ? 2 : 1)) + '\n';
      if (status != 255 || !line.starts_with("Expecting one of: (") || line.find('\n') != line.size() - 1 ||
          !line.ends_with(end))
        std::cerr << length << ": " << status << ' ' << line;
      platform.forgetCalls();
    }
    _exit(0);
  };
  EXPECT_EXIT(report(), testing::ExitedWithCode(0), testing::Eq(""));
}
