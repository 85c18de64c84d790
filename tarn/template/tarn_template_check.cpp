#include "tarn/template/tarn_template_check.h"

#include <algorithm>
#include <utility>

namespace tarn {

namespace {

/// Rules by what they look at, without those that are allowed.
class Checker {
 public:
  Checker(const TemplateSource& source, const std::set<std::string>& allowed) : m_source(source) {
    for (const Rule& rule : rules()) {
      if (!allowed.contains(rule.id)) {
        m_rules[static_cast<std::size_t>(rule.look)].push_back(&rule);
      }
    }
  }

  std::vector<Finding> check() {
    look(Look::source, {m_source, nullptr, {}, nullptr});
    for (const TemplateNode& node : m_source.nodes()) {
      if (node.isMember) {
        lookAtKey(node);
      }
      lookAtValue(node);
    }
    std::vector<Finding>& all = m_findings.all();
    std::stable_sort(all.begin(), all.end(),
                     [](const Finding& one, const Finding& other) { return one.offset < other.offset; });
    return std::exchange(all, {});
  }

 private:
  void lookAtKey(const TemplateNode& node) {
    const Raw key = m_source.key(node);
    look(Look::string, {m_source, &node, key, nullptr});
    // Neither "$foreach" nor what is mistaken for it begins otherwise.
    const std::size_t first = key.text.find_first_not_of(' ');
    if (first != std::string_view::npos &&
        std::string_view("$fF\\").find(key.text[first]) != std::string_view::npos) {
      const Words words(key);
      look(Look::repeat, {m_source, &node, key, &words});
    }
  }

  void lookAtValue(const TemplateNode& node) {
    if (node.type == NodeType::object) {
      look(Look::object, {m_source, &node, {}, nullptr});
    }
    if (node.type != NodeType::text) {
      return;
    }
    const Raw text = m_source.text(node);
    look(Look::string, {m_source, &node, text, nullptr});
    if (beginsLikeCommand(text.text)) {
      const Words words(text);
      look(node.isMember ? Look::command : Look::element, {m_source, &node, text, &words});
    }
  }

  static bool beginsLikeCommand(std::string_view raw) {
    raw.remove_prefix(std::min(raw.find_first_not_of(' '), raw.size()));
    const std::string_view first = raw.substr(0, std::min(raw.find_first_of(" \t\n\r\\"), raw.size()));
    const auto isFirst = [first](std::string_view word) {
      return first.size() == word.size() && distance(first, word) == 0;
    };
    return std::any_of(commandWords().begin(), commandWords().end(), isFirst);
  }

  void look(Look look, const Site& site) {
    for (const Rule* const rule : m_rules[static_cast<std::size_t>(look)]) {
      m_findings.begin(*rule);
      rule->find(site, m_findings);
    }
  }

  const TemplateSource& m_source;
  Findings m_findings;
  std::array<std::vector<const Rule*>, 6> m_rules;
};

}  // namespace

const std::vector<Rule>& rules() {
  static const std::vector<Rule> all = [] {
    std::vector<Rule> rows = textRules();
    for (std::vector<Rule>& more : std::array{commandRules(), repeatRules()}) {
      std::move(more.begin(), more.end(), std::back_inserter(rows));
    }
    return rows;
  }();
  return all;
}

std::vector<Finding> check(const TemplateSource& source, const std::set<std::string>& allowed) {
  return Checker(source, allowed).check();
}

const char* nameOf(Level level) {
  return level == Level::error ? "error" : "warning";
}

Shown asText(const Finding& finding) {
  const std::string hint = finding.hint.empty() ? "" : "; " + finding.hint;
  return shown(std::string(nameOf(finding.rule->level)) + ": " + finding.text + hint + " [" +
               finding.rule->id + "]");
}

bool isRepeat(const Words& words) {
  return words[0].text == "$foreach" && words.count + (words.blankBehind ? 1 : 0) >= 3;
}

std::string nameInResult(const Raw& key) {
  const Words words(key);
  if (!isRepeat(words)) {
    return unescaped(key.text);
  }
  const std::string& name = words[2].text;
  return name.size() < 2 ? "" : name.substr(1, name.size() - 2);
}

}  // namespace tarn
