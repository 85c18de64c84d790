#include "tarn/redact/tarn_redact_map.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <algorithm>
#include <cctype>

#include "tarn/redact/tarn_redact_words.h"

namespace tarn {

namespace {

bool isUpper(std::string_view text) {
  const auto is = [text](int (*test)(int)) {
    return std::any_of(text.begin(), text.end(), [test](unsigned char c) { return test(c) != 0; });
  };
  return is(isupper) && !is(islower);
}

/// b, c, … z, ba, bb, …: no digit, which would go on with the number before it.
std::string lettersOf(unsigned form) {
  std::string letters;
  for (++form; form > 0; form /= 26) {
    letters.insert(letters.begin(), static_cast<char>('a' + form % 26));
  }
  return letters;
}

}  // namespace

std::size_t wordPseudonymAt(std::string_view text) {
  static const RE2 pattern(
      R"((?i)redacted-(?:(?:host|user|customer|secret)-[0-9]{1,9}[a-z]*|[0-9]{1,9}[a-z]*@mail\.invalid))",
      RE2::Latin1);
  re2::StringPiece rest(text.data(), text.size());
  return RE2::Consume(&rest, pattern) ? text.size() - rest.size() : 0;
}

bool isWordPseudonym(std::string_view word) {
  return !word.empty() && wordPseudonymAt(word) == word.size();
}

bool RedactMap::add(RedactKind kind, std::string original, std::string pseudonym) {
  if (m_byOriginal.contains(original) || m_byPseudonym.contains(pseudonym)) {
    return false;
  }
  const Pair& pair = m_pairs.emplace_back(Pair{kind, std::move(original), std::move(pseudonym)});
  m_byOriginal.emplace(pair.original, &pair);
  m_byPseudonym.emplace(pair.pseudonym, &pair);
  return true;
}

const RedactMap::Pair* RedactMap::byPseudonym(std::string_view pseudonym) const {
  const auto found = m_byPseudonym.find(pseudonym);
  return found == m_byPseudonym.end() ? nullptr : found->second;
}

const RedactMap::Pair* RedactMap::byOriginal(std::string_view original) const {
  const auto found = m_byOriginal.find(original);
  return found == m_byOriginal.end() ? nullptr : found->second;
}

std::optional<std::string_view> RedactMap::pseudonymOf(RedactKind kind, std::string_view original) {
  if (const Pair* const known = byOriginal(original)) {
    return known->pseudonym;
  }
  auto pseudonym = makePseudonym(kind, original);
  if (!pseudonym) {
    return std::nullopt;
  }
  add(kind, std::string(original), std::move(*pseudonym));
  return m_pairs.back().pseudonym;
}

std::optional<std::string> RedactMap::makePseudonym(RedactKind kind, std::string_view original) {
  const auto address = kind <= RedactKind::mac ? readAddress(original) : std::nullopt;
  return address ? addressPseudonym(*address) : wordPseudonym(kind, original);
}

// Two written forms of one address whose pseudonyms would look alike: the later one becomes another address,
// since both have to be restored.
std::optional<std::string> RedactMap::addressPseudonym(Address original) {
  for (;;) {
    const auto pseudonym = m_pool.pseudonymOf(original);
    std::string text = pseudonym ? writeAddress(*pseudonym) : "";
    if (!pseudonym || !m_byPseudonym.contains(text)) {
      return pseudonym ? std::optional(std::move(text)) : std::nullopt;
    }
    original.groups = pseudonym->groups;
  }
}

std::string RedactMap::wordPseudonym(RedactKind kind, std::string_view original) {
  Word& word = m_words[static_cast<char>(kind) + folded(original)];
  if (word.number == 0) {
    word.number = ++m_numbers[indexOf(kind)];
  }
  std::string text = kind == RedactKind::email ? fmt::format("redacted-{}", word.number)
                                               : fmt::format("redacted-{}-{}", nameOf(kind), word.number);
  const std::string ending = kind == RedactKind::email ? "@mail.invalid" : "";
  if (isUpper(original)) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return toupper(c); });
  }
  std::string result = text + ending;
  while (m_byPseudonym.contains(result)) {
    result = fmt::format("{}{}{}", text, lettersOf(word.forms++), ending);
  }
  return result;
}

void RedactMap::learnNumber(RedactKind kind, std::string_view original, std::string_view pseudonym) {
  static const RE2 pattern("(?i)redacted-(?:[a-z]+-)?([0-9]{1,9}).*", RE2::Latin1);
  unsigned number = 0;
  if (isWordPseudonym(pseudonym) &&
      RE2::FullMatch(re2::StringPiece(pseudonym.data(), pseudonym.size()), pattern, &number)) {
    m_words[static_cast<char>(kind) + folded(original)].number = number;
    m_numbers[indexOf(kind)] = std::max(m_numbers[indexOf(kind)], number);
  }
}

bool RedactMap::learn(RedactKind kind, std::string original, std::string pseudonym) {
  const auto from = readAddress(original);
  const auto to = readAddress(pseudonym);
  if (kind <= RedactKind::mac && from && to && from->kind == to->kind) {
    m_pool.learn(*from, *to);
  }
  learnNumber(kind, original, pseudonym);
  return add(kind, std::move(original), std::move(pseudonym));
}

}  // namespace tarn
