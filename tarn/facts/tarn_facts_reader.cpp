/// The form of the table: lines of facts and kinds, see the beginning of facts.txt.

#include <algorithm>
#include <set>

#include "tarn/facts/tarn_facts_keys.h"

namespace tarn {

namespace {

/// A fact or a kind as it stands in the text.
struct Stanza {
  std::size_t line = 0;
  std::string head;  ///< "/place" or "[kind]"
  struct Entry {
    std::size_t line;
    std::string key, value;
  };
  std::vector<Entry> entries;
};

class Reading {
 public:
  std::optional<FactsProblem> read(std::string_view text, std::vector<Fact>* facts) {
    std::optional<FactsProblem> problem = split(text);
    for (std::size_t i = 0; i < m_stanzas.size() && !problem; ++i) {
      problem = add(m_stanzas[i], facts);
    }
    return problem;
  }

 private:
  std::optional<FactsProblem> split(std::string_view text) {
    for (std::size_t line = 1; !text.empty(); ++line) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      if (auto problem = splitLine(text.substr(0, end), line)) {
        return FactsProblem{line, *problem};
      }
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::nullopt;
  }

  Problem splitLine(std::string_view line, std::size_t number) {
    const std::string_view said = trimmed(line);
    if (said.empty() || line[0] == '#') {
      return std::nullopt;
    }
    if (line[0] == '/' || (line[0] == '[' && said.back() == ']')) {
      m_stanzas.push_back({number, std::string(said), {}});
      return std::nullopt;
    }
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent == 0 || m_stanzas.empty()) {
      return "neither a place, nor a kind in brackets, nor an indented line of one";
    }
    return splitEntry(said, indent, number);
  }

  Problem splitEntry(std::string_view said, std::size_t indent, std::size_t number) {
    std::vector<Stanza::Entry>& entries = m_stanzas.back().entries;
    if (!entries.empty() && indent > m_indent) {
      entries.back().value += " " + std::string(said);
      return std::nullopt;
    }
    m_indent = indent;
    const std::size_t colon = said.find(':');
    if (colon == std::string_view::npos || trimmed(said.substr(colon + 1)).empty()) {
      return "no \"key: value\"";
    }
    entries.push_back(
        {number, std::string(said.substr(0, colon)), std::string(trimmed(said.substr(colon + 1)))});
    return std::nullopt;
  }

  std::optional<FactsProblem> add(const Stanza& stanza, std::vector<Fact>* facts) {
    if (!m_heads.insert(stanza.head).second) {
      return FactsProblem{stanza.line, stanza.head + " stands here twice"};
    }
    Fact fact;
    if (auto problem = fill(stanza, &fact)) {
      return problem;
    }
    if (stanza.head[0] == '[') {
      m_kinds[stanza.head.substr(1, stanza.head.size() - 2)] = fact;
      return std::nullopt;
    }
    if (fact.title.empty() || fact.meaning.empty()) {
      return FactsProblem{stanza.line, stanza.head + " has no " + (fact.title.empty() ? "title" : "meaning")};
    }
    fact.place = stanza.head;
    facts->push_back(std::move(fact));
    return std::nullopt;
  }

  /// The kind first, so that what the stanza says itself stands above it.
  std::optional<FactsProblem> fill(const Stanza& stanza, Fact* fact) {
    for (const Stanza::Entry& entry : stanza.entries) {
      if (entry.key == "kind") {
        const auto kind = m_kinds.find(entry.value);
        if (kind == m_kinds.end()) {
          return FactsProblem{entry.line, "no such kind above: " + entry.value};
        }
        *fact = kind->second;
      }
    }
    std::set<std::string> said;
    for (const Stanza::Entry& entry : stanza.entries) {
      Problem problem = said.insert(entry.key).second ? takeKey(entry.key, entry.value, *fact)
                                                      : entry.key + " is said twice";
      if (problem) {
        return FactsProblem{entry.line, *problem};
      }
    }
    return std::nullopt;
  }

  std::vector<Stanza> m_stanzas;
  std::set<std::string> m_heads;
  std::map<std::string, Fact> m_kinds;
  std::size_t m_indent = 0;
};

}  // namespace

std::optional<FactsProblem> readFacts(std::string_view text, std::vector<Fact>* facts) {
  return Reading().read(text, facts);
}

}  // namespace tarn
