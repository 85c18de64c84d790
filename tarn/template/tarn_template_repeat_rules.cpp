// Rules about keys that repeat their member, or that their author took for one.

#include <fmt/format.h>

#include <algorithm>

#include "tarn/template/tarn_template_check.h"

namespace tarn {

namespace {

constexpr std::string_view kForm = "write \"$foreach VARIABLE [NAME]\"";

bool hasSeparator(const Word& word) {
  return separatorIn(word.raw) != std::string_view::npos;
}

bool isForeach(const Words& words) {
  return words[0].text == "$foreach";
}

void variable(const Site& site, Findings& findings) {
  const Word& word = (*site.words)[1];
  if (isForeach(*site.words) && !word.raw.empty() && !word.raw.starts_with('[') && !hasSeparator(word) &&
      !isKnown(foreachVariables(), word.text)) {
    findings.add(word.offset, fmt::format("\"$foreach\" knows no \"{}\": the array is empty", word.text),
                 instead(foreachVariables(), word.text));
  }
}

void name(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  if (!isForeach(words) || hasSeparator(words[0]) || hasSeparator(words[1])) {
    return;
  }
  const std::string& bracketed = words[2].text;
  if (words.count < 3) {
    findings.add(words[words.count - 1].offset, "no [NAME] stands behind the variable", std::string(kForm));
  } else if (bracketed.size() <= 2) {
    findings.add(words[2].offset, fmt::format("\"{}\" leaves no name", bracketed), std::string(kForm));
  } else if (!bracketed.starts_with('[')) {
    findings.add(words[2].offset, fmt::format("\"{}\" loses its first and its last character", bracketed),
                 fmt::format("write \"[{}]\"", bracketed));
  } else if (!bracketed.ends_with(']')) {
    findings.add(
        words[2].offset,
        fmt::format("the name ends at its first blank, and \"{}\" loses its last character", bracketed),
        "write the name without a blank, in brackets");
  } else if (words.count > 3) {
    findings.add(words[3].offset, fmt::format("what follows \"{}\" is ignored", bracketed), "take it out");
  }
}

void joined(const Site& site, Findings& findings) {
  for (const Word& word : site.words->words) {
    const std::size_t at = separatorIn(word.raw);
    if (at != std::string_view::npos && (*site.words)[0].raw.starts_with("$foreach")) {
      findings.add(word.offset + at, "only blanks separate the words of a \"$foreach\" key", "write a blank");
      return;
    }
  }
}

/// Whether what follows looks like a variable or a name in brackets.
bool goesOnLikeForeach(const Words& words) {
  return std::any_of(words.words.begin() + 1, words.words.end(), [](const Word& word) {
    return word.text.starts_with('[') || isKnown(foreachVariables(), word.text);
  });
}

void like(const Site& site, Findings& findings) {
  const Words& words = *site.words;
  const std::string first = lowered(words[0].text);
  const bool apart =
      (first == "for" || first == "$for" || first == "$") && lowered(words[1].text).ends_with("each");
  const bool near = apart || distance(first, "$foreach") <= 2;
  if (!isForeach(words) && near && !hasSeparator(words[0]) &&
      (first.starts_with('$') || goesOnLikeForeach(words))) {
    findings.add(words[0].offset, "the key is copied: it does not begin with \"$foreach\"",
                 std::string(kForm));
  }
}

void string(const Site& site, Findings& findings) {
  if (site.node->type == NodeType::text && isRepeat(*site.words)) {
    findings.add(site.node->begin, "a string to repeat is copied, not evaluated",
                 "repeat an object that has it as a member's value");
  }
}

}  // namespace

std::vector<Rule> repeatRules() {
  using enum Level;
  return {
      {"foreach-variable",
       error,
       "Of an unknown variable nothing is repeated.",
       Look::repeat,
       variable,
       R"({"$foreach dbs [all]": {"n": "native db name"}})",
       R"(1:12: error: "$foreach" knows no "dbs": the array is empty; write "db" [foreach-variable])",
       R"({"$foreach db [all]": {"n": "native db name"}})",
       {R"({"$foreach table [t]": {"a": "b"}})"}},
      {"foreach-name",
       error,
       "The name stands in brackets and has no blank.",
       Look::repeat,
       name,
       R"({"$foreach db all": {"n": "native db name"}})",
       R"(1:15: error: "all" loses its first and its last character; write "[all]" [foreach-name])",
       R"({"$foreach db [all]": {"n": "native db name"}})",
       {R"({"$foreach  db  [a]  ": {"a": "b"}})"}},
      {"tab",
       warning,
       "",
       Look::repeat,
       joined,
       "{\"$foreach\tdb [all]\": {\"n\": \"native db name\"}}",
       R"(1:11: warning: only blanks separate the words of a "$foreach" key; write a blank [tab])",
       R"({"$foreach db [all]": {"n": "native db name"}})",
       {"{\"a\tb\": \"c\"}"}},
      {"foreach-like",
       warning,
       "Only a key that begins with the word $foreach repeats its member.",
       Look::repeat,
       like,
       R"({"$for each db [all]": {"n": "native db name"}})",
       R"(1:3: warning: the key is copied: it does not begin with "$foreach"; write "$foreach VARIABLE [NAME]" [foreach-like])",
       R"({"$foreach db [all]": {"n": "native db name"}})",
       {R"({"foreach": "x", "for each host": "y"})"}},
      {"foreach-string",
       warning,
       "A string to repeat becomes an element of an array, and those are copied.",
       Look::repeat,
       string,
       R"({"$foreach db [name]": "native db name"})",
       R"(1:25: warning: a string to repeat is copied, not evaluated; repeat an object that has it as a member's value [foreach-string])",
       R"({"$foreach db [all]": {"n": "native db name"}})",
       {R"({"foreach": "x"})"}},
  };
}

}  // namespace tarn
