#pragma once
/// Text for the manual page, in mdoc(7).

#include <string>
#include <string_view>

namespace tarn {

/// A word of text: what roff would take for its own is told not to be, and nothing but ASCII is left.
std::string roffWord(std::string_view word);

/// Sentences, each beginning on a line of its own, lines of less than 80 bytes.
void appendSentences(std::string_view text, std::string& out);

/// Paragraphs, parted by blank lines; one that begins with a blank is shown as it is.
void appendParagraphs(std::string_view text, std::string& out);

/// Lines as they are, set off from the text.
void appendLiteral(std::string_view lines, std::string& out);

}  // namespace tarn
