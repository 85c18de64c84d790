#pragma once
/// Tables of cases in text files: "function: argument | argument => result", a line a case; "#" begins a
/// remark.
///
/// What would not show stands as a symbol: ␠ blank, ␉ tab, ␊ line feed, ␍ carriage return, ␀ NUL, � the byte
/// C3 alone, ∅ nothing; x×9 is nine times x.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

using Arguments = std::vector<std::string>;

struct Case {
  std::string line, function;
  Arguments arguments;
  std::string result;
};

inline std::string decoded(const std::string& text) {
  static const std::map<std::string, std::string> symbols = {
      {"␠", " "},    {"␉", "\t"}, {"␊", "\n"}, {"␍", "\r"}, {"␀", std::string(1, '\0')},
      {"�", "\xC3"}, {"∅", ""}};
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const auto symbol = symbols.find(text.substr(at, 3));
    if (symbol != symbols.end()) {
      result += symbol->second;
      at += 3;
    } else if (text.compare(at, 2, "×") == 0) {
      std::size_t digits = 0;
      result.append(std::stoul(text.substr(at + 2), &digits) - 1, result.back());
      at += 2 + digits;
    } else {
      result += text[at++];
    }
  }
  return result;
}

inline std::vector<Case> casesOf(const std::string& path) {
  std::vector<Case> cases;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.starts_with("#"))
      continue;
    const std::size_t colon = line.find(": ");
    const std::size_t arrow = line.rfind(" => ");
    cases.push_back({line, line.substr(0, colon), {}, decoded(line.substr(arrow + 4))});
    for (std::size_t from = colon + 2, to; from <= arrow; from = to + 3) {
      to = std::min(line.find(" | ", from), arrow);
      cases.back().arguments.push_back(decoded(line.substr(from, to - from)));
    }
  }
  EXPECT_FALSE(cases.empty()) << path;
  return cases;
}

/// Each case of the file by the function that it names.
inline void expectCases(
    const std::string& path,
    const std::map<std::string, std::function<std::string(const Arguments&)>>& functions) {
  for (const Case& one : casesOf(path))
    EXPECT_EQ(one.result, functions.at(one.function)(one.arguments)) << one.line;
}
