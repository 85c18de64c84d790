#include "tarn/facts/tarn_facts_table.h"

#include <algorithm>

namespace tarn {

extern const char* const kFactsText;  // facts.txt, packed by the build

namespace {

bool isNumber(std::string_view token) {
  return !token.empty() && token.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The token without the `#2` that tells a repeated name from the first.
std::string_view withoutRepeat(std::string_view token) {
  const std::size_t mark = token.rfind('#');
  return mark != std::string_view::npos && isNumber(token.substr(mark + 1)) ? token.substr(0, mark) : token;
}

/// Takes the first token of a pointer that begins with a slash.
std::string_view takeToken(std::string_view* pointer) {
  const std::size_t end = std::min(pointer->find('/', 1), pointer->size());
  const std::string_view token = pointer->substr(1, end - 1);
  pointer->remove_prefix(end);
  return token;
}

}  // namespace

const Facts& Facts::builtIn() {
  static const Facts facts = [] {
    Facts made;
    made.add(kFactsText);  // the build has checked it
    return made;
  }();
  return facts;
}

std::optional<FactsProblem> Facts::add(std::string_view text) {
  std::vector<Fact> facts;
  if (auto problem = readFacts(text, &facts)) {
    return problem;
  }
  for (Fact& fact : facts) {
    insert(std::move(fact));
  }
  return std::nullopt;
}

void Facts::insert(Fact fact) {
  std::size_t node = 0;
  for (std::string_view rest = fact.place; !rest.empty();) {
    const auto [found, isNew] = m_nodes[node].below.emplace(takeToken(&rest), m_nodes.size());
    node = found->second;
    if (isNew) {
      m_nodes.emplace_back();
    }
  }
  if (!m_nodes[node].fact) {
    m_nodes[node].fact = m_facts.size();
    m_facts.push_back(std::move(fact));
  } else {
    m_facts[*m_nodes[node].fact] = std::move(fact);
  }
}

const Fact* Facts::find(std::string_view pointer) const {
  Step step(*this);
  while (step.known() && !pointer.empty()) {
    step = step.below(takeToken(&pointer));
  }
  return step.fact();
}

Facts::Step Facts::Step::below(std::string_view token) const {
  Step next = *this;
  if (!m_known) {
    return next;
  }
  const auto& known = m_facts->m_nodes[m_node].below;
  auto found = known.find(token);
  if (found == known.end() && isNumber(token)) {
    found = known.find("*");
  }
  if (found == known.end()) {
    found = known.find(withoutRepeat(token));
  }
  next.m_known = found != known.end();
  next.m_node = next.m_known ? found->second : 0;
  return next;
}

const Fact* Facts::Step::fact() const {
  if (!m_known || !m_facts->m_nodes[m_node].fact) {
    return nullptr;
  }
  return &m_facts->m_facts[*m_facts->m_nodes[m_node].fact];
}

}  // namespace tarn
