// Times as documents and the collection server's file names tell them.

#include <gtest/gtest.h>

#include "tarn/fleet/tarn_fleet_time.h"

using namespace tarn;

namespace {

std::string shownTime(const char* text) {
  const auto time = timeOf(text);
  return time ? rfc3339(time->seconds * kMomentsPerSecond) + (time->isDate ? " date" : "") : "none";
}

TEST(FleetTime, ReadsWhatDocumentsWrite) {
  const char* const kCases[][2] = {{"2026-11-21", "2026-11-21T00:00:00Z date"},
                                   {"2026-11-21T10:20:30Z", "2026-11-21T10:20:30Z"},
                                   {"2026-11-21 10:20:30.123+01:00", "2026-11-21T09:20:30Z"},
                                   {"2026-11-21T10:20+0130", "2026-11-21T08:50:00Z"},
                                   {"2026-11-21T10:20:30 -01", "2026-11-21T11:20:30Z"},
                                   {"2026-11-21T23:59:60Z", "2026-11-22T00:00:00Z"},
                                   {"2028-02-29", "2028-02-29T00:00:00Z date"},
                                   {"2026-02-29", "none"},
                                   {"2026-11-21T1:20", "none"},
                                   {"2026-11-21T24:00", "none"},
                                   {"2026-11-21T10:20:30+", "none"},
                                   {"2026-11-21T10:20:30Zx", "none"},
                                   {"1969-12-31T23:59:59Z", "none"},
                                   {"9999-12-31T23:59:59-00:01", "none"},
                                   {"21.11.2026", "none"},
                                   {"", "none"}};
  for (const auto& [text, shown] : kCases)
    EXPECT_EQ(shown, shownTime(text)) << text;
}

// The document's date wins over a file that lies elsewhere by more than a day.
TEST(FleetTime, ChoosesBetweenDocumentAndFile) {
  const char* const kCases[][4] = {
      {"2026-11-21", "/s/2026-11-21/102030-ab.json", "2026-11-21T10:20:30Z", "file"},
      {"2026-11-21", "/s/2026-11-22/235959-ab.json.zst", "2026-11-22T23:59:59Z", "file"},
      {"2026-11-21", "2026-11-20/000000-ab.json", "2026-11-20T00:00:00Z", "file"},
      {"2026-11-21", "/s/2026-11-23/000000-ab.json", "2026-11-21T00:00:00Z", "document"},
      {"2026-11-21T08:00Z", "/s/2026-11-21/102030-ab.json", "2026-11-21T08:00:00Z", "document"},
      {"yesterday", "/s/2026-11-21/102030-ab.json", "2026-11-21T10:20:30Z", "file"},
      {"2026-11-21", "/s/x2026-11-21/102030-ab.json", "2026-11-21T00:00:00Z", "document"},
      {"2026-11-21", "/s/2026-11-21/1020-ab.json", "2026-11-21T00:00:00Z", "document"}};
  for (const auto& [document, file, shown, from] : kCases) {
    const auto chosen = chosenTime(timeOf(document), storedName(file));
    EXPECT_EQ(shown, rfc3339(chosen->seconds * kMomentsPerSecond)) << document << " " << file;
    EXPECT_STREQ(from, chosen->from) << document << " " << file;
  }
  EXPECT_FALSE(chosenTime(timeOf("soon"), storedName("/s/a.json")));
}

}  // namespace
