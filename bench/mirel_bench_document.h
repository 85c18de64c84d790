#pragma once

#include <fstream>
#include <iterator>
#include <string>

/// A document of about `size` bytes as the collector writes it: an array of rows of eight short columns.
inline std::string document(long size) {
  const std::string row =
      "    {\n      \"TABSCHEMA\": \"SYSCAT\",\n      \"TABNAME\": \"TABLES\",\n      \"TYPE\": \"V\",\n"
      "      \"STATUS\": \"N\",\n      \"COLCOUNT\": \"72\",\n      \"CARD\": \"-1\",\n      \"NPAGES\": "
      "\"-1\",\n"
      "      \"STATS_TIME\": \"2026-11-21-02.44.01\"\n    }";
  std::string text = "{\n  \"rows\": [\n" + row;
  while (text.size() + row.size() < static_cast<unsigned long>(size)) {
    text += ",\n" + row;
  }
  return text + "\n  ]\n}";
}

/// The same size in documents of the sample instance.
inline std::string sampleDocument(long size) {
  std::ifstream file(MIREL_BENCH_SAMPLE);
  const std::string sample{std::istreambuf_iterator<char>(file), {}};
  std::string text = "[\n" + sample;
  while (text.size() + sample.size() < static_cast<unsigned long>(size)) {
    text += ",\n" + sample;
  }
  return text + "\n]";
}
