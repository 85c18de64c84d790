#include "tarn/redact/tarn_redact_words.h"

#include <fmt/format.h>
#include <locale.h>
#include <wctype.h>

#include <array>
#include <cstring>

#include "tarn/document/tarn_document_utf8.h"
#include "tarn/redact/tarn_redact_cover.h"

namespace tarn {

namespace {

/// A phrase is compared by its first words; so many tell any two apart that people write.
constexpr std::size_t kWordsAtMost = 64;

constexpr bool isLetterOrDigit(unsigned char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         byte >= 0x80;
}

/// By byte: 0 for what parts words, else the byte in lower case.
constexpr std::array<unsigned char, 256> kFolded = [] {
  std::array<unsigned char, 256> table = {};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const bool upper = byte >= 'A' && byte <= 'Z';
    table[byte] = static_cast<unsigned char>(
        isLetterOrDigit(static_cast<unsigned char>(byte)) ? byte + (upper ? 32 : 0) : 0);
  }
  return table;
}();

unsigned char foldedByte(char byte) {
  return kFolded[static_cast<unsigned char>(byte)];
}

std::size_t wordLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && foldedByte(text[length]) != 0) {
    ++length;
  }
  return length;
}

std::size_t gapLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && foldedByte(text[length]) == 0) {
    ++length;
  }
  return length;
}

wint_t lowerOf(char32_t character) {
  static const locale_t plain = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  const auto wide = static_cast<wint_t>(character);
  return plain == nullptr ? wide : towlower_l(wide, plain);
}

/// The word in lower case, one letter in whatever form that tells it from others.
void appendFolded(std::string_view word, std::string* text) {
  while (!word.empty()) {
    const Utf8 next = nextUtf8(word);
    if (next.length == 1) {
      *text += static_cast<char>(foldedByte(word[0]));
    } else {
      fmt::format_to(std::back_inserter(*text), "\x01{:x}\x01", lowerOf(next.character));
    }
    word.remove_prefix(next.length);
  }
}

/// Where a word's beginning is noted: its first two bytes in lower case. Letters beyond ASCII have other
/// bytes in the other case and all share one place.
std::size_t beginningOf(std::string_view word) {
  const unsigned char first = foldedByte(word[0]);
  const unsigned char second = word.size() > 1 ? foldedByte(word[1]) : 0;
  return first >= 0x80 || second >= 0x80 ? 0x8080 : static_cast<std::size_t>(first << 8 | second);
}

}  // namespace

std::string folded(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t gap = gapLength(text);
    const std::size_t end = gap + wordLength(text.substr(gap));
    result += text.substr(0, gap);
    appendFolded(text.substr(gap, end - gap), &result);
    text.remove_prefix(end);
  }
  return result;
}

void Words::add(RedactKind kind, std::string_view raw) {
  std::string covered;
  appendCovered(raw, &covered);
  std::string_view text = covered;
  text.remove_prefix(gapLength(text));
  if (text.empty()) {
    return;
  }
  m_beginnings[beginningOf(text)] = true;
  std::uint32_t node = 0;
  for (std::size_t words = 0; words < kWordsAtMost && !text.empty() && gapLength(text) < text.size();
       ++words) {
    const std::size_t length = gapLength(text) + wordLength(text.substr(gapLength(text)));
    const auto [found, added] =
        m_steps.emplace(keyOf(node, text.substr(0, length)), static_cast<std::uint32_t>(m_nodes.size()));
    if (added) {
      m_nodes.emplace_back();
    }
    node = found->second;
    text.remove_prefix(length);
  }
  if (!m_nodes[node].ends) {
    m_nodes[node] = {true, kind};
  }
}

std::string Words::keyOf(std::uint32_t node, std::string_view piece) {
  std::string key(reinterpret_cast<const char*>(&node), sizeof node);
  const std::size_t gap = gapLength(piece);
  key += piece.substr(0, gap);
  key += '\0';
  appendFolded(piece.substr(gap), &key);
  return key;
}

Words::Match Words::matchAt(std::string_view text) const {
  Match longest;
  std::uint32_t node = 0;
  std::size_t at = 0;
  for (std::size_t words = 0; words < kWordsAtMost && at < text.size(); ++words) {
    const std::size_t gap = gapLength(text.substr(at));
    const std::size_t end = at + gap + wordLength(text.substr(at + gap));
    const auto next = m_steps.find(keyOf(node, text.substr(at, end - at)));
    if (next == m_steps.end()) {
      break;
    }
    node = next->second;
    at = end;
    if (m_nodes[node].ends) {
      longest = {at, m_nodes[node].kind};
    }
  }
  return longest;
}

void Words::find(std::string_view text, std::size_t from, std::vector<Span>* found) const {
  std::size_t at = empty() ? text.size() : from;
  while (at < text.size()) {
    if (foldedByte(text[at]) == 0) {
      ++at;
      continue;
    }
    const bool mayBegin = m_beginnings[beginningOf(text.substr(at, 2))];
    const Match match = mayBegin ? matchAt(text.substr(at)) : Match();
    if (match.length > 0) {
      found->push_back({at, match.length, match.kind, false});
      at += match.length;
    }
    while (at < text.size() && foldedByte(text[at]) != 0) {
      ++at;
    }
  }
}

}  // namespace tarn
