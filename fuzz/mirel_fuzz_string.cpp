// Texts under any sequence of operations, beside the same texts as std::string.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "common/mirel_common_builder.h"
#include "common/mirel_string.h"
#include "fuzz/mirel_fuzz.h"

namespace {

constexpr std::size_t kTexts = 3;
constexpr std::size_t kLongest = 256;  // overlapping replacements grow with the square
constexpr std::size_t npos = mirel_string::npos;

std::size_t placeOf(const std::string& text, const std::string& needle, std::size_t from) {
  if (from >= text.size()) {
    return npos;
  }
  const auto same = [](char a, char b) { return tolower(a) == tolower(b); };
  const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
  const auto hit = std::search(begin, text.end(), needle.begin(), needle.end(), same);
  return hit == text.end() ? npos : static_cast<std::size_t>(hit - text.begin());
}

std::string replaceAll(const std::string& text, const std::string& pattern, const std::string& replacement) {
  std::size_t hit = placeOf(text, pattern, 0);
  std::string result = text.substr(0, hit);
  while (hit != npos) {
    const std::size_t end = hit + pattern.size();
    const std::size_t next = placeOf(text, pattern, hit + 1);
    result += replacement + text.substr(end, next == npos || next < end ? npos : next - end);
    hit = next;
  }
  return result;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char character) { return static_cast<char>(toupper(character)); });
  return text;
}

struct Text {
  mirel_string own = "";
  std::string model = {};
};

void checkReading(const Text& a, const Text& b, std::size_t position) {
  require(a.own.length() == a.model.size() && a.model == a.own.c_str(), "the text");
  require(a.own.find(b.own, position) == placeOf(a.model, b.model, position), "find");
  require((a.own == b.own) == (a.model == b.model) && a.own == a.model.c_str(), "comparison");
  const std::size_t last = a.model.empty() ? 0 : a.model.size() - 1;
  require(a.own.at(position) == a.model.c_str()[std::min(position, last)], "at");
  std::vector<char> expected(position % 9), copied(position % 9, '?');
  std::copy_n(a.model.begin(), std::min(a.model.size(), expected.empty() ? 0 : expected.size() - 1),
              expected.begin());
  a.own.copy_to(copied.data(), copied.size());
  require(copied == expected, "copy_to");
}

void change(Text& a, Text& b, const Text& c, FuzzedDataProvider& choices) {
  const auto position = choices.ConsumeIntegralInRange<std::size_t>(0, kLongest);
  const auto length = choices.ConsumeBool() ? npos : choices.ConsumeIntegralInRange<std::size_t>(0, 16);
  switch (choices.ConsumeIntegralInRange(0, 10)) {
    case 0:
      a.model = choices.ConsumeRandomLengthString();
      a.own = mirel_string(a.model.data(), a.model.size());
      a.model.resize(strlen(a.model.c_str()));
      break;
    case 1:
      a = Text(b);
      break;
    case 2:
      a = std::move(b);
      require(b.own.length() == 0 && *b.own.c_str() == '\0', "a text that was moved is empty");
      b = Text();
      break;
    case 3:
      a.own += c.own;
      a.model += c.model;
      break;
    case 4:
      a.own = b.own + c.own;
      a.model = b.model + c.model;
      break;
    case 5:
      a.own = a.own.upper();
      a.model = upper(a.model);
      break;
    case 6:
      a.own = a.own.substr(position, length);
      a.model = a.model.substr(std::min(position, a.model.size()), length);
      break;
    case 7:
      a.own = a.own.ltrim();
      a.model.erase(0, a.model.find_first_not_of(' '));
      break;
    case 8:
      a.own = a.own.replace_all(b.own, c.own);
      a.model = replaceAll(a.model, b.model, c.model);
      break;
    case 9: {
      const auto number = choices.ConsumeIntegral<long>();
      a.own = position % 2 == 0 ? mirel_string(number) : mirel_string(static_cast<unsigned int>(number));
      a.model = std::to_string(position % 2 == 0 ? number : static_cast<unsigned int>(number));
      break;
    }
    default: {
      mirel_string_builder builder;
      builder.append(b.own);
      builder.append(position, '-');
      builder.removeLast(length);
      builder.append(c.own);
      a.own = builder.take();
      const std::string front = b.model + std::string(position, '-');
      a.model = front.substr(0, front.size() - std::min(length, front.size())) + c.model;
      break;
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider choices(data, size);
  std::vector<Text> texts(kTexts);
  while (choices.remaining_bytes() > 0) {
    const auto which = choices.ConsumeIntegralInRange<std::size_t>(0, kTexts - 1);
    Text& a = texts[which];
    Text& b = texts[(which + 1) % kTexts];
    change(a, b, texts[(which + 2) % kTexts], choices);
    checkReading(a, b, choices.ConsumeIntegralInRange<std::size_t>(0, kLongest));
    if (a.model.size() > kLongest) {
      a = Text();
    }
  }
  return 0;
}
