#pragma once
/// Where what is shown goes: lines of the terminal's width, with bold and dim words on a terminal.

#include <functional>
#include <vector>

#include "tarn/document/tarn_document_shown.h"

namespace tarn {

/// `all`: nothing is cut, neither lines nor lists.
struct Look {
  std::size_t width = 80;
  bool all = false;
  bool styled = false;
};

/// A text behind a label.
struct Labelled {
  Shown label, text;
};

class Lines {
 public:
  using Print = std::function<void(const Shown& line)>;

  Lines(Print print, const Look& look) : m_print(std::move(print)), m_look(look) {}

  const Look& look() const { return m_look; }
  /// How many of `count` are shown, where more than `most` are too many for a page. One or two more take no
  /// more room than the word that they are missing.
  std::size_t most(std::size_t count, std::size_t most);
  /// Columns behind an indent.
  std::size_t widthBehind(std::size_t indent) const;

  void line(std::size_t indent, const Shown& text);
  /// Short lines, in order: below each other, or on a wide terminal in columns beside each other, each read
  /// downwards.
  void list(std::size_t indent, const std::vector<Shown>& lines);
  /// Each text behind its label, the texts below each other, on as many lines as they need.
  void labelled(std::size_t indent, const std::vector<Labelled>& lines);
  /// Words, on as many lines as they need.
  void words(std::size_t indent, const Shown& text);
  /// An empty line before the next one, but for the first.
  void gap() { m_wantsGap = m_count > 0; }
  /// A title, and behind it where it stands.
  void heading(std::size_t indent, const Shown& title, const Shown& where);
  /// What was left out: "… 12 more rows", where `what` is a row.
  void rest(std::size_t indent, std::size_t count, const Shown& what);
  /// Something was left out, or shortened.
  void cut() { m_hasCut = true; }

  /// How many lines there are so far, but for empty ones.
  std::size_t count() const { return m_count; }
  /// Whether something was left out.
  bool hasCut() const { return m_hasCut; }

 private:
  void print(const Shown& line);

  Print m_print;
  Look m_look;
  std::size_t m_count = 0;
  bool m_hasCut = false, m_wantsGap = false;
};

}  // namespace tarn
