#include "tarn/manual/tarn_manual_roff.h"

#include <fmt/format.h>

#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

constexpr std::size_t kLineAtMost = 78;

std::string characterOf(std::string_view bytes, char32_t character) {
  switch (character) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      return character < 0x80 ? std::string(bytes)
                              : fmt::format("\\[u{:04X}]", static_cast<unsigned>(character));
  }
}

bool endsSentence(std::string_view word) {
  const std::size_t last = word.find_last_not_of(")\"'");
  return last != std::string_view::npos && std::string_view(".?!").find(word[last]) != std::string_view::npos;
}

/// Takes the next piece of the text, up to `separator` or the end.
std::string_view take(std::string_view* text, std::string_view separator) {
  const std::size_t end = text->find(separator);
  const std::string_view piece = text->substr(0, end);
  text->remove_prefix(end == std::string_view::npos ? text->size() : end + separator.size());
  return piece;
}

}  // namespace

std::string roffWord(std::string_view word) {
  std::string out = !word.empty() && (word[0] == '.' || word[0] == '\'') ? "\\&" : "";
  while (!word.empty()) {
    const Utf8 next = nextUtf8(word);
    out += characterOf(word.substr(0, next.length), next.character);
    word.remove_prefix(next.length);
  }
  return out;
}

void appendSentences(std::string_view text, std::string& out) {
  std::size_t column = 0;
  while (!text.empty()) {
    const std::string_view line = take(&text, "\n");
    for (std::string_view rest = line; !rest.empty();) {
      const std::string_view plain = take(&rest, " ");
      const std::string word = roffWord(plain);
      if (column != 0) {
        out += column + word.size() < kLineAtMost ? ' ' : '\n';
        column = out.back() == '\n' ? 0 : column + 1;
      }
      out += word;
      column += word.size();
      if (endsSentence(plain) && !(rest.empty() && text.empty())) {
        out += '\n';
        column = 0;
      }
    }
  }
  out += '\n';
}

void appendParagraphs(std::string_view text, std::string& out) {
  while (!text.empty()) {
    const std::string_view paragraph = take(&text, "\n\n");
    if (paragraph.substr(0, 1) == " ") {
      appendLiteral(paragraph, out);
      continue;
    }
    out += ".Pp\n";
    appendSentences(paragraph, out);
  }
}

void appendLiteral(std::string_view lines, std::string& out) {
  out += ".Bd -literal -offset indent\n";
  while (!lines.empty()) {
    out += roffWord(take(&lines, "\n"));
    out += '\n';
  }
  out += ".Ed\n";
}

}  // namespace tarn
