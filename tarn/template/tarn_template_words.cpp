#include "tarn/template/tarn_template_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

#include "generator/mirel_generator_walk.h"

namespace tarn {

namespace {

constexpr std::size_t kLongestWord = 32;
constexpr std::size_t kFar = 1000;
constexpr std::string_view kMultiplied = R"(\\\)";

/// Three backslashes multiply what is behind them; such a word is looked at as it stands.
std::string textOf(std::string_view raw) {
  return raw.find(kMultiplied) == std::string_view::npos ? unescaped(raw) : std::string(raw);
}

}  // namespace

Words::Words(const Raw& string) {
  const std::string_view text = string.text;
  std::size_t at = text.find_first_not_of(' ');
  while (at != std::string_view::npos && count < words.size()) {
    const std::size_t end = std::min(text.find(' ', at), text.size());
    const std::string_view raw = text.substr(at, end - at);
    if (count + 1 == words.size()) {
      fromLast = text.substr(at);
    }
    words[count++] = {textOf(raw), raw, string.offset + at};
    blankBehind = end < text.size();
    at = text.find_first_not_of(' ', end);
  }
  blankBehind = blankBehind && at == std::string_view::npos;
}

std::size_t separatorIn(std::string_view raw) {
  for (std::size_t at = 0; at < raw.size(); ++at) {
    const bool escaped = raw[at] == '\\' && at + 1 < raw.size();
    if (raw[at] == '\t' || raw[at] == '\n' || raw[at] == '\r' ||
        (escaped && (raw[at + 1] == 'n' || raw[at + 1] == 'r'))) {
      return at;
    }
    at += escaped ? 1 : 0;
  }
  return std::string_view::npos;
}

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return lower;
}

std::size_t distance(std::string_view one, std::string_view other) {
  if (one.size() > kLongestWord || other.size() > kLongestWord) {
    return kFar;
  }
  const std::string from = lowered(one);
  const std::string to = lowered(other);
  // Row by row over the letters of `from`; two rows back for the exchange of neighbours.
  std::array<std::array<std::size_t, kLongestWord + 1>, 3> rows{};
  std::iota(rows[0].begin(), rows[0].end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    auto& row = rows[i % 3];
    const auto& above = rows[(i + 2) % 3];
    const auto& twoAbove = rows[(i + 1) % 3];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
        row[j] = std::min(row[j], twoAbove[j - 2] + 1);
      }
    }
  }
  return rows[from.size() % 3][to.size()];
}

const Known& commandWords() {
  static const Known words = Generator::commandWords();
  return words;
}

const Known& sqlKinds() {
  static const Known words = Generator::sqlKinds();
  return words;
}

const Known& foreachVariables() {
  static const Known words = Generator::foreachVariables();
  return words;
}

const std::vector<NativeWord>& collectors() {
  static const std::vector<NativeWord> words = nativeWords();
  return words;
}

const Known& collectorWords() {
  static const Known words = [] {
    Known all;
    for (const NativeWord& collector : collectors()) {
      all.push_back(collector.word);
    }
    return all;
  }();
  return words;
}

const NativeWord* collectorOf(std::string_view word) {
  const auto found = std::find_if(collectors().begin(), collectors().end(),
                                  [word](const NativeWord& collector) { return word == collector.word; });
  return found == collectors().end() ? nullptr : &*found;
}

bool isKnown(const Known& known, std::string_view word) {
  return std::find(known.begin(), known.end(), word) != known.end();
}

std::string instead(const Known& known, std::string_view word) {
  const auto nearest = std::min_element(
      known.begin(), known.end(),
      [word](const char* one, const char* other) { return distance(word, one) < distance(word, other); });
  if (distance(word, *nearest) <= std::max<std::size_t>(1, std::string_view(*nearest).size() / 2)) {
    return fmt::format("write \"{}\"", *nearest);
  }
  return fmt::format("write one of {}", fmt::join(known, ", "));
}

}  // namespace tarn
