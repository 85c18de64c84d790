#include "platform/host/mirel_host_sysinfo_text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::optional<SwapSpace> swaps(const std::string& rows) {
  return parseSwaps("Filename Type Size Used Priority\n" + rows);
}

std::optional<std::string> name(const std::string& value) {
  return prettyName("PRETTY_NAME=" + value);
}

TEST(SysInfoText, IsUnderstood) {
  EXPECT_EQ((ProcessorSet{7, 1}), parseProcessors("1-4,8,10-11\n"));
  EXPECT_EQ((ProcessorSet{1 << 20, 0}), parseProcessors("0-1048575"));
  EXPECT_EQ(2596, parseMegahertz("2596.499"));
  EXPECT_EQ(1, parseMegahertz("0.500"));
  EXPECT_EQ(2048, memoryField("MM: 1 kB\n M : 2 kB\nM: 3 kB", "M"));
  EXPECT_EQ(0x7FFFFFFFFFFFFC00, memoryField("M: 9007199254740991 kB", "M"));
  EXPECT_EQ((SwapSpace{11264, 6144}), swaps("/a file 10 4 -2\n/b file 1 1 -3"));
  EXPECT_EQ("Alpine Linux", name("Alpine Linux\r\n"));
  EXPECT_EQ(R"(a\"b)", name(R"('a\"b')"));
  EXPECT_EQ(R"(a\nb\c`)", name(R"("a\nb\\c\`")"));
}

TEST(SysInfoText, AnswersNothingWhenInDoubt) {
  for (const char* text : {"0-1048576", "0-3,", "0-3,2", "4-", ",", "\n", "0-18446744073709551616"}) {
    EXPECT_EQ(std::nullopt, parseProcessors(text)) << text;
  }
  for (const char* text : {"0.000", "12.", "1e9", ".5", "9223372036854775808", "9223372036854775807.5"}) {
    EXPECT_EQ(std::nullopt, parseMegahertz(text)) << text;
  }
  for (const char* text : {"M: 9007199254740992 kB", "M: 12", "M: kB", "M: 1 kB 2 kB", "M 1 kB"}) {
    EXPECT_EQ(std::nullopt, memoryField(text, "M")) << text;
  }
  for (const char* text : {"/a file 10", "/a file 9007199254740991 0\n/b file 1 0", "/a file 1 2", "\n"}) {
    EXPECT_EQ(std::nullopt, swaps(text)) << text;
  }
  for (const char* text : {R"("a"b)", R"("a\")", "'", R"("")", ""}) {
    EXPECT_EQ(std::nullopt, name(text)) << text;
  }
  EXPECT_EQ(std::nullopt, name(std::string("\0x", 2)));
}

}  // namespace
}  // namespace host
