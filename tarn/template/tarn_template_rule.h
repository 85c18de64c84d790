#pragma once
/// What `tarn check` knows, a row a rule. The tests run their examples, the manual lists them.

#include <string>
#include <string_view>
#include <vector>

#include "tarn/template/tarn_template_source.h"
#include "tarn/template/tarn_template_words.h"

namespace tarn {

/// An error loses something for certain; a warning is what hardly anybody means.
enum class Level : unsigned char { error, warning };

struct Rule;

struct Finding {
  std::size_t offset = 0;
  const Rule* rule = nullptr;
  std::string text, hint;  ///< what is wrong, what to write instead; foreign bytes as they are
};

class Findings {
 public:
  void add(std::size_t offset, std::string text, std::string hint) {
    m_all.push_back({offset, m_rule, std::move(text), std::move(hint)});
  }
  void begin(const Rule& rule) { m_rule = &rule; }
  std::vector<Finding>& all() { return m_all; }

 private:
  std::vector<Finding> m_all;
  const Rule* m_rule = nullptr;
};

/// One place that rules look at, with what is known of it.
struct Site {
  const TemplateSource& source;
  const TemplateNode* node;  ///< null for the source itself
  Raw string;                ///< of a string
  const Words* words;        ///< of a command or a repeated key
};

/// What kind of place a rule looks at. A command is a string, the value of a member, whose first word is a
/// command word but for letter case and what separates it; a repeat is a key that looks like `$foreach`.
enum class Look : unsigned char { source, object, string, command, element, repeat };

struct Rule {
  const char* id;
  Level level;
  const char* why;  ///< a sentence for the manual
  Look look;
  void (*find)(const Site& site, Findings& findings);
  std::string wrong, says;  ///< a template, and the line about it without the file's name
  std::string right;
  std::vector<std::string> nearMisses;  ///< templates that look wrong and are not
};

/// In the order of the manual.
const std::vector<Rule>& rules();

/// The rows of `rules`, by what they are about.
std::vector<Rule> textRules();
std::vector<Rule> commandRules();
std::vector<Rule> repeatRules();

/// What the author most likely did to get a syntax error.
std::string likelyCause(const TemplateSource& source);

}  // namespace tarn
