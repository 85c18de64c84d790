#include <limits>

#include "common/mirel_common_builder.h"
#include "common/mirel_string.h"
#include "tests/unit/fake_platform.h"

using String = PlatformTest;

constexpr unsigned long npos = mirel_string::npos;

TEST_F(String, IsMadeFromTextsAndNumbers) {
  const std::pair<mirel_string, const char*> rows[] = {
      {nullptr, ""},
      {"abc", "abc"},
      {{"abcdef", 3}, "abc"},
      {{"ab\0cd", 5}, "ab"},
      {{nullptr, 4}, ""},
      {-5, "-5"},
      {std::numeric_limits<long>::min(), "-9223372036854775808"},
      {4294967295U, "4294967295"},
      {npos, "18446744073709551615"},
  };
  for (const auto& [text, reads] : rows) {
    platform.forgetCalls();
    const mirel_string copy(text);
    EXPECT_STREQ(reads, copy.c_str());
    EXPECT_EQ(strlen(reads), text.length()) << reads;
    EXPECT_EQ("_ossMemAlloc(" + std::to_string(strlen(reads) + 3) + ", 1, mirel_string:368)\n",
              platform.calls(FakePlatform::memory));
  }
}

TEST_F(String, TagsItsAllocations) {
  const mirel_string abc("abc");
  const mirel_string de("de");
  mirel_string target("x");
  const struct {
    const char* name;
    std::function<void()> action;
    std::string sizesFlagsLines;
  } rows[] = {
      {"text", [] { mirel_string("ab"); }, "5, 1, 368 | 389 | "},
      {"number", [] { mirel_string(-5); }, "38, 1, 368 | 389 | "},
      {"assignment", [&] { target = abc; }, "389 | 6, 1, 368 | "},
      {"move", [&] { target = mirel_string("x"); }, "4, 1, 368 | 389 | "},
      {"upper", [&] { abc.upper(); }, "6, 1, 368 | 389 | "},
      {"substr", [&] { abc.substr(1, 1); }, "2, 0, 173 | 4, 1, 368 | 389 | 389 | "},
      {"ltrim", [&] { abc.ltrim(); }, "4, 0, 173 | 6, 1, 368 | 389 | 389 | "},
      {"+", [&] { abc + de; }, "8, 0, 341 | 8, 1, 368 | 389 | 389 | "},
      {"+=", [&] { target += de; }, "6, 0, 315 | 389 | "},
  };
  for (const auto& [name, action, expected] : rows) {
    platform.forgetCalls();
    action();
    std::string calls = platform.calls(FakePlatform::memory);
    for (const auto& [from, to] : {std::pair("_ossMemAlloc(", ""), std::pair("_ossMemFree(0, 0, ", ""),
                                   std::pair("mirel_string:", ""), std::pair(")\n", " | ")})
      for (std::size_t at; (at = calls.find(from)) != std::string::npos;)
        calls.replace(at, strlen(from), to);
    EXPECT_EQ(expected, calls) << name;
  }
  platform.forgetCalls();
  const mirel_string numbers[] = {1, 1L, 1U, 1UL};
  EXPECT_EQ(R"(ossSnprintf(38, "%d")
ossSnprintf(38, "%ld")
ossSnprintf(38, "%u")
ossSnprintf(38, "%lu")
)",
            platform.calls(FakePlatform::service));
}

TEST_F(String, DerivesTexts) {
  const struct {
    unsigned long position, length;
    const char* expected;
  } parts[] = {{0, npos, "abc"}, {1, 1, "b"}, {1, 99, "bc"}, {3, 1, ""},
               {5, npos, ""},    {10, 1, ""}, {0, 0, ""}};
  for (const auto& [position, length, expected] : parts)
    EXPECT_STREQ(expected, mirel_string("abc").substr(position, length).c_str()) << position << ' ' << length;
  const struct {
    const char *text, *trimmed, *upper;
  } rows[] = {{"  a b ", "a b ", "  A B "},
              {"\tz", "\tz", "\tZ"},
              {"  ", "", "  "},
              {"", "", ""},
              {"\xE4`{", "\xE4`{", "\xE4`{"}};
  for (const auto& [text, trimmed, upper] : rows) {
    EXPECT_STREQ(trimmed, mirel_string(text).ltrim().c_str()) << text;
    EXPECT_STREQ(upper, mirel_string(text).upper().c_str()) << text;
    EXPECT_EQ(strlen(text) + 3, (mirel_string(text) + "abc").length()) << text;
  }
}

TEST_F(String, FindsAndReplacesIgnoringLetterCase) {
  const struct {
    const char *text, *needle;
    unsigned long from, position;
  } finds[] = {{"abc", "B", 0, 1}, {"abc", "B", 2, npos},  {"abc", "a", 3, npos}, {"abcABC", "bC", 2, 4},
               {"abc", "", 1, 1},  {"abc", nullptr, 2, 2}, {"", "", 0, npos},     {"ab", "abc", 0, npos}};
  for (const auto& [text, needle, from, position] : finds)
    EXPECT_EQ(position, mirel_string(text).find(needle, from)) << text << ' ' << from;
  const struct {
    const char *text, *pattern, *replacement, *expected;
  } rows[] = {
      {"ab\"", "\"", "\\\"", "ab\\\""},
      {"abc", "\"", "x", "abc"},
      {"$HOME/$home", "$home", "/h", "/h//h"},
      {"--", "-", "+-", "+-+-"},
      {"ab", "", "-", "-a-b"},
      {"", "a", "b", ""},
      {"\\\\\\", "\\\\", "\\", "\\\\\\"},
      {"\\\\\\\\", "\\\\", "\\", "\\\\\\\\\\\\"},
      {"aXaxa-axa", "AXA", "<>", "<>xa-axa<>-<>"},
  };
  for (const auto& [text, pattern, replacement, expected] : rows)
    EXPECT_STREQ(expected, mirel_string(text).replace_all(pattern, replacement).c_str()) << text;
}

TEST_F(String, ReadsComparesAndCopiesExactly) {
  const mirel_string abc("abc");
  EXPECT_EQ("bc", std::string({abc.at(1), abc.at(99)}));
  EXPECT_EQ('\0', mirel_string("").at(0));
  EXPECT_TRUE(abc == "abc");
  for (const char* other : {"ABC", "abcd", "ab", ""})
    EXPECT_FALSE(abc == other || mirel_string(other) == abc) << other;
  const std::pair<unsigned long, std::string> copies[] = {
      {0, "########"}, {3, std::string("ab\0#####", 8)}, {6, std::string("abc\0\0\0##", 8)}};
  for (const auto& [size, expected] : copies) {
    std::string target = "########";
    abc.copy_to(target.data(), size);
    EXPECT_EQ(expected, target) << size;
  }
}

// Nobody assigns a string to itself; it must still stay within its block.
TEST_F(String, AssignedToItselfReadsAsEmptyAndKeepsItsLength) {
  mirel_string text("abc");
  const mirel_string& same = text;
  text = same;
  EXPECT_STREQ("", text.c_str());
  EXPECT_EQ(3U, text.length());
  EXPECT_TRUE(text.strFree());
  EXPECT_TRUE(text.strFree());
  EXPECT_TRUE(text.strAlloc(10, 4));
  EXPECT_EQ(0, memcmp(text.c_str(), "\0\0\0\0\0\0\0\0\0", 10));
  platform.fail("_ossMemFree");
  EXPECT_FALSE(text.strFree());
}

// Whichever allocation fails, the result is the whole text or the empty one, and nothing is left behind.
TEST_F(String, ReadsAsEmptyWhenAnAllocationFails) {
  const mirel_string abc("abc");
  const mirel_string b("b");
  const struct {
    const char* expected;
    std::function<mirel_string()> action;
  } rows[] = {
      {"x", [] { return mirel_string("x"); }},
      {"17", [] { return mirel_string(17); }},
      {"abc", [&] { return mirel_string(abc); }},
      {"ABC", [&] { return abc.upper(); }},
      {"bc", [&] { return abc.substr(1, 2); }},
      {"aabcc", [&] { return abc.replace_all(b, abc); }},
      {"b", [&] { return b.replace_all(abc, b); }},
      {"abcb", [&] { return abc + b; }},
      {"-abc",
       [&] {
         mirel_string_builder builder;
         builder.append(100, '-');
         builder.removeLast(99);
         builder.append(abc);
         return builder.take();
       }},
  };
  for (const auto& [expected, action] : rows) {
    bool reached = true;
    for (long nth = 1; reached; ++nth) {
      platform.heal();
      platform.forgetCalls();
      platform.fail("_ossMemAlloc", nth);
      const mirel_string result = action();
      reached = platform.count("_ossMemAlloc") >= nth;
      EXPECT_STREQ(reached && result.length() == 0 ? "" : expected, result.c_str()) << nth;
    }
  }
}

// What failed once takes part in everything else as the empty text, but equals everything.
TEST_F(String, WithoutABufferActsAsTheEmptyText) {
  const mirel_string abc("abc");
  platform.fail("_ossMemAlloc");
  mirel_string failed("failed");
  EXPECT_STREQ("", failed.c_str());
  EXPECT_EQ('\0', failed.at(0));
  EXPECT_EQ(npos, failed.find("a", 0));
  EXPECT_EQ(1U, abc.find(failed, 1));
  EXPECT_TRUE(failed == abc);
  EXPECT_FALSE(abc == failed);
  for (const mirel_string& derived : {failed.substr(0, npos), failed.upper(), failed.ltrim(),
                                      failed.replace_all("a", "b"), mirel_string(failed)})
    EXPECT_STREQ("", derived.c_str());
  failed += abc;
  EXPECT_STREQ("abc", failed.c_str());
  platform.fail("_ossMemAlloc");
  failed += abc;
  EXPECT_STREQ("", failed.c_str());
  EXPECT_STREQ("abc", (failed + abc).c_str());
}

// A formatting service that fails tells a negative length.
TEST_F(String, NumberThatCannotBeFormattedIsEmpty) {
  platform.fail("ossSnprintf");
  const mirel_string number(17);
  EXPECT_EQ(0U, number.length());
  EXPECT_STREQ("", number.c_str());
}

TEST_F(String, BuilderGrowsGeometrically) {
  mirel_string_builder builder;
  std::string expected;
  for (int i = 0; i < 10000; ++i) {
    builder.append("line\n");
    expected += "line\n";
  }
  EXPECT_GT(20, platform.count("_ossMemAlloc"));
  EXPECT_EQ(expected, builder.take().c_str());
  EXPECT_STREQ("", builder.take().c_str());
}
