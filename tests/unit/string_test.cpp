#include <limits>

#include "common/mirel_common_builder.h"
#include "common/mirel_string.h"
#include "tests/unit/fake_platform.h"

using String = PlatformTest;

constexpr unsigned long npos = mirel_string::npos;

TEST_F(String, IsMadeFromTextsAndNumbers) {
  const std::pair<mirel_string, const char*> rows[] = {
      {nullptr, ""},
      {{"abcdef", 3}, "abc"},
      {{"ab\0cd", 5}, "ab"},
      {{nullptr, 4}, ""},
      {-5, "-5"},
      {std::numeric_limits<long>::min(), "-9223372036854775808"},
      {4294967295U, "4294967295"},
      {npos, "18446744073709551615"},
  };
  for (const auto& [text, reads] : rows) {
    EXPECT_STREQ(reads, mirel_string(text).c_str());
    EXPECT_EQ(strlen(reads), text.length()) << reads;
  }
}

TEST_F(String, TagsItsAllocations) {
  const mirel_string abc("abc");
  const mirel_string de("de");
  mirel_string target("x");
  const struct {
    std::function<void()> action;
    std::string calls;  // sizes, flags and lines
  } rows[] = {
      {[] { mirel_string("ab"); }, "5, 1, 368 389 "},
      {[] { mirel_string(-5); }, "38, 1, 368 389 "},
      {[] { mirel_string copy = mirel_string_builder().take(); }, "3, 1, 368 389 "},
      {[&] { target = abc; }, "389 6, 1, 368 "},
      {[&] { target = mirel_string("x"); }, "4, 1, 368 389 "},
      {[&] { target = mirel_string(mirel_string(17)).ltrim(); },
       "38, 1, 368 3, 0, 173 5, 1, 368 389 389 389 "},
      {[&] { abc.upper(); }, "6, 1, 368 389 "},
      {[&] { abc.substr(1, 1); }, "2, 0, 173 4, 1, 368 389 389 "},
      {[&] { abc + de; }, "8, 0, 341 8, 1, 368 389 389 "},
      {[&] { target += de; }, "7, 0, 315 389 "},
      {[] { mirel_string_builder().append('x'); }, "64, 0, 315 389 "},
      {[&, same = std::ref(target)] { target = std::move(same.get()); }, ""},
      {[&] { platform.fail("_ossMemAlloc"), target += de; }, "9, 0, 315 "},
  };
  for (const auto& [action, expected] : rows) {
    platform.forgetCalls();
    action();
    std::string calls = platform.calls("_ossMem");
    for (const std::string noise : {"_ossMemAlloc(", "_ossMemFree(0, 0, ", "mirel_string:", ")"})
      for (std::size_t at; (at = calls.find(noise)) != std::string::npos;)
        calls.erase(at, noise.size());
    std::replace(calls.begin(), calls.end(), '\n', ' ');
    EXPECT_EQ(expected, calls);
  }
}

TEST_F(String, ComparesExactlyAndEndsAtItsLastCharacter) {
  const mirel_string abc("abc");
  EXPECT_EQ("bc", std::string({abc.at(1), abc.at(99)}));
  EXPECT_EQ('\0', mirel_string("").at(0));
  EXPECT_TRUE(abc == "abc");
  for (const char* other : {"ABC", "abcd", "ab", "", static_cast<const char*>(nullptr)})
    EXPECT_FALSE(abc == other || mirel_string(other) == abc || abc == mirel_string(other)) << other;
  EXPECT_TRUE(mirel_string("") == nullptr && !(abc == nullptr) && mirel_string("0") == 0);
  platform.fail("_ossMemAlloc");
  const mirel_string lost("lost");
  EXPECT_TRUE(lost == "abc" && lost == abc && lost == nullptr && !(abc == lost));
}

// Nobody assigns a string to itself; it must still stay within its block.
TEST_F(String, AssignedToItselfReadsAsEmptyAndKeepsItsLength) {
  mirel_string text("abc");
  const mirel_string& same = text;
  text = same;
  EXPECT_STREQ("", text.c_str());
  EXPECT_EQ(3U, text.length());
  EXPECT_TRUE(text.strFree() && text.strFree() && text.strAlloc(10, 4));
  EXPECT_EQ(0, memcmp(text.c_str(), "\0\0\0\0\0\0\0\0\0", 10));
  platform.fail("_ossMemFree");
  EXPECT_FALSE(text.strFree());
}

TEST_F(String, IsJoinedAndMoved) {
  mirel_string text("ab");
  mirel_string& moved = text;
  text += "cd";
  EXPECT_STREQ("abcd-ab", (text + "-" + "ab").c_str());
  const mirel_string taken(std::move(text));
  EXPECT_STREQ("abcd", taken.c_str());
  EXPECT_TRUE(moved.length() == 0 && *moved.c_str() == '\0');
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
  builder.append("one more");
  builder.removeLast(9);
  EXPECT_STREQ("", builder.take().c_str());
}
