#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <memory>
#include <random>

#include "generator/mirel_generator_template.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_value.h"
#include "platform/host/services/mirel_host_heap.h"
#include "tarn/template/tarn_template_check.h"

using namespace tarn;

namespace {

/// The lines of one rule, or of all.
std::string linesOf(const std::string& text, const std::string& rule = "") {
  const TemplateSource source(text);
  std::string lines;
  for (const Finding& finding : check(source, {})) {
    const Place place = source.place(finding.offset);
    if (rule.empty() || rule == finding.rule->id)
      lines += (lines.empty() ? "" : "\n") + std::to_string(place.line) + ":" + std::to_string(place.column) +
               ": " + asText(finding).text();
  }
  return lines;
}

/// The tree that the source stands for, of the core's values.
Value* valueOf(const TemplateSource& source, std::size_t index) {
  const TemplateNode& node = source.nodes()[index];
  if (node.type == NodeType::text)
    return new PrimitiveValue(unescaped(source.text(node).text).c_str());
  auto object = std::make_unique<ObjectValue>("");
  auto array = std::make_unique<ArrayValue>();
  for (std::size_t child = index + 1; child < node.end; child = source.nodes()[child].end)
    if (node.type == NodeType::object)
      object->addValue(new KeyValuePair(unescaped(source.key(source.nodes()[child]).text).c_str(),
                                        valueOf(source, child)));
    else
      array->push_back(valueOf(source, child));
  return node.type == NodeType::object ? static_cast<Value*>(object.release()) : array.release();
}

std::string readByTarn(const std::string& text) {
  const TemplateSource source(text);
  if (source.error())
    return source.error()->line + "\n";
  return std::unique_ptr<Value>(valueOf(source, 0))->stringify(0).c_str();
}

/// What the collector makes of a template before it evaluates, in a process that may end.
std::string readByMirel(const std::string& text) {
  int ends[2];
  EXPECT_EQ(0, pipe(ends));
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    std::atexit([] {  // before a sanitizer looks for leaks, which takes longer than the rest
      std::cout.flush();
      _exit(0);
    });
    JsonParser parser;
    std::cout << std::unique_ptr<Value>(parser.parse(text.c_str()))->stringify(0);
    std::cout.flush();
    _exit(0);
  }
  close(ends[1]);
  std::string output;
  char block[4096];
  for (ssize_t part; (part = read(ends[0], block, sizeof block)) > 0;)
    output.append(block, static_cast<std::size_t>(part));
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return output;
}

/// One byte less, more, or another; or an early end.
std::string mutated(std::string text, std::mt19937& random) {
  constexpr std::string_view kBytes = "{}[]:,\"\"\\\\ \n1nt";
  for (auto times = random() % 3; times < 3 && !text.empty(); ++times) {
    const std::size_t at = random() % text.size();
    const char byte = kBytes[random() % kBytes.size()];
    switch (random() % 8) {
      case 0:
        text.resize(at);
        break;
      case 1:
      case 2:
        text.erase(at, 1);
        break;
      case 3:
      case 4:
        text[at] = byte;
        break;
      default:
        text.insert(at, 1, byte);
    }
  }
  return text;
}

std::string randomTemplate(std::mt19937& random, int depth) {
  static const std::vector<std::string> kTexts = {"native os name",
                                                  "native readFile /etc/os-release",
                                                  "native network null",
                                                  "execute ls -l \\\"a b\\\"",
                                                  "sql value n select count(*) as n from t",
                                                  "sql array select 1 as \\\"a\\\" from t",
                                                  "plain",
                                                  "two words",
                                                  "C:\\\\old",
                                                  "line\\nline",
                                                  "\xC3\xA9",
                                                  ""};
  if (depth == 0 || random() % 4 == 0)
    return '"' + kTexts[random() % kTexts.size()] + '"';
  const bool isObject = random() % 3 > 0;
  std::string text = isObject ? "{" : "[";
  for (auto count = 1 + random() % 4; count > 0; --count) {
    const std::string value = randomTemplate(random, depth - 1);
    const bool repeats = value[0] == '{' && random() % 3 == 0;
    text += isObject ? (repeats ? "\"$foreach db [n" : "\"n") + std::to_string(count) +
                           (repeats ? "]\": " : "\" : ")
                     : "";
    text += isObject || value[0] != '"' ? value : "\"element\"";
    text += count > 1 ? ", " : isObject ? "}" : "]";
  }
  return text;
}

}  // namespace

// Each row's own examples: what it says of the wrong one, silence on the right one and the near misses.
TEST(Check, RulesKeepTheirExamples) {
  for (const Rule& rule : rules()) {
    EXPECT_EQ(rule.says, linesOf(rule.wrong, rule.id));
    EXPECT_EQ("", linesOf(rule.right));
    for (const std::string& text : rule.nearMisses)
      EXPECT_EQ("", linesOf(text, rule.id)) << text;
  }
}

TEST(Check, CorrectTemplatesAreClean) {
  std::mt19937 random(7);  // NOLINT: the same templates each time
  for (int i = 0; i < 2000; ++i) {
    const std::string text = "{\"root\": " + randomTemplate(random, 4) + "}";
    EXPECT_EQ("", linesOf(text)) << text;
  }
}

#ifdef MIREL_CHECKED_MEMORY
constexpr std::size_t kSlips = 1000;  // a process each, which is slow with all that is in memory then
#else
constexpr std::size_t kSlips = 4000;
#endif

// The tree or the error line, byte for byte, over templates with slips.
TEST(TemplateSource, ReadsAsTheCollectorDoes) {
  std::vector<std::string> texts = {kDefaultTemplate, "{\n  \"a\": [\"x\",\n [\"y\", {\"z\": \"u\"}]]\n}\n"};
  for (const Rule& rule : rules()) {
    texts.insert(texts.end(), {rule.wrong, rule.right});
    texts.insert(texts.end(), rule.nearMisses.begin(), rule.nearMisses.end());
  }
  std::mt19937 random(11);  // NOLINT: the same slips each time
  for (std::size_t i = 0; i < kSlips; ++i) {
    const std::string& seed = texts[random() % texts.size()];
    const std::string text = i < texts.size() ? texts[i] : mutated(seed, random);
    ASSERT_EQ(readByMirel(text), readByTarn(text)) << text;
  }
}
