// Questions: places as people write them, and how values are compared.

#include <gtest/gtest.h>

#include "tarn/fleet/tarn_fleet_order.h"
#include "tarn/fleet/tarn_fleet_pattern.h"

namespace {

TEST(PlacePattern, TakesElementsByNumberByStarAndByName) {
  const struct {
    const char *written, *pointer, *glob, *like;
  } kCases[] = {
      {"*", "*", "*", "%"},
      {"/platformInfo/osRelease", "/platformInfo/osRelease", "*", "%"},
      {"/databaseInfo/0/name", "/databaseInfo/*/name", "*", "%"},
      {"/databaseInfo/*/pools/17", "/databaseInfo/*/pools/*", "*", "%"},
      {"/databaseInfo[name=A%_*?]/x_1", "/databaseInfo/*/x_1", "/databaseInfo[[]name=A%_[*][?]]/x_1",
       "/databaseInfo[name=A\\%\\_*?]/x\\_1"},
      {"/databaseInfo/0/pools[N=main]/PAGES", "/databaseInfo/*/pools/*/PAGES",
       "/databaseInfo[[]*]/pools[[]N=main]/PAGES", "/databaseInfo[%]/pools[N=main]/PAGES"},
      {"/nodes[=a\\b]", "/nodes/*", "/nodes[[]=a\\b]", "/nodes[=a\\\\b]"},
  };
  for (const auto& row : kCases) {
    const tarn::PlacePattern pattern = tarn::placePattern(row.written);
    EXPECT_EQ(row.pointer, pattern.pointer) << row.written;
    EXPECT_EQ(row.glob, pattern.glob) << row.written;
    EXPECT_EQ(row.like, pattern.like) << row.written;
  }
}

TEST(Order, TellsNumbersFromTexts) {
  for (const char* const number : {"0", "-0.5", "+1.25E+002", "123456789012345678", "7e-3"})
    EXPECT_TRUE(tarn::numericValue(number)) << number;
  for (const char* const text :
       {"", "-", ".5", "5.", "1e", "0x10", "1 ", "nan", "inf", "1.2.3", "1234567890123456789"})
    EXPECT_FALSE(tarn::numericValue(text)) << text;
  EXPECT_EQ(-125.0, *tarn::numericValue("-1.25E+002"));
}

TEST(Order, IsNatural) {
  const std::string texts[] = {
      "",        "-",       "1.9",     "1.9.1", "1.9a",
      "1.10",    "15.0.17", "15.0.18", "123",   "A 2",
      "A 10 b",  "A 10 c",  "a9",      "a10",   std::string("b") + std::string(100, '7'),
      "\xC3\xA4"};
  for (std::size_t text = 1; text < std::size(texts); ++text)
    EXPECT_LT(tarn::naturalKey(texts[text - 1]), tarn::naturalKey(texts[text])) << texts[text];
}

}  // namespace
