#include "tarn/show/tarn_show_lines.h"

#include <algorithm>
#include <limits>

namespace tarn {

namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kWordsAtMost = 100;  // wider lines are hard to read
constexpr std::size_t kWide = 120;         // from here on short lines stand beside each other
constexpr std::size_t kGutter = 4;         // between them
constexpr std::size_t kShortest = 4;       // lines that a column has
constexpr std::size_t kWidthAtLeast = 20;  // behind an indent, however deep
constexpr std::size_t kSpare = 2;          // more than the most that are shown all the same

Shown styled(bool on, const Shown& begin, const Shown& text) {
  return on ? begin + text + "\x1b[0m" : text;
}

}  // namespace

std::size_t Lines::most(std::size_t count, std::size_t most) {
  return m_look.all || count <= most + kSpare ? count : most;
}

std::size_t Lines::widthBehind(std::size_t indent) const {
  if (m_look.all) {
    return std::numeric_limits<std::size_t>::max();
  }
  return std::max(m_look.width, indent + kWidthAtLeast) - indent;
}

void Lines::line(std::size_t indent, const Shown& text) {
  const Shown fits = fitted(text, widthBehind(indent));
  m_hasCut = m_hasCut || fits.text().size() != text.text().size();
  print(text.text().empty() ? Shown() : blanks(indent) + fits);
}

void Lines::list(std::size_t indent, const std::vector<Shown>& lines) {
  std::size_t widest = 0;
  for (const Shown& line : lines) {
    widest = std::max(widest, columns(line.text()));
  }
  const std::size_t width = widthBehind(indent);
  const std::size_t fitting = m_look.all || m_look.width < kWide ? 1 : (width + kGutter) / (widest + kGutter);
  const std::size_t beside =
      std::clamp<std::size_t>(lines.size() / kShortest, 1, std::max<std::size_t>(1, fitting));
  const std::size_t height = (lines.size() + beside - 1) / beside;
  for (std::size_t row = 0; row < height; ++row) {
    Shown all = lines[row];
    for (std::size_t at = row + height, before = row; at < lines.size(); before = at, at += height) {
      all += blanks(widest + kGutter - columns(lines[before].text())) + lines[at];
    }
    line(indent, all);
  }
}

void Lines::words(std::size_t indent, const Shown& text) {
  for (const Shown& words : folded(text, std::min(widthBehind(indent), kWordsAtMost))) {
    line(indent, words);
  }
}

void Lines::labelled(std::size_t indent, const std::vector<Labelled>& lines) {
  std::size_t widest = 0;
  for (const Labelled& one : lines) {
    widest = std::max(widest, columns(one.label.text()));
  }
  const std::size_t behind = indent + widest + kGap;
  for (const Labelled& one : lines) {
    Shown before = one.label + blanks(widest + kGap - columns(one.label.text()));
    for (const Shown& words : folded(one.text, std::min(widthBehind(behind), kWordsAtMost))) {
      line(indent, before + words);
      before = blanks(widest + kGap);
    }
  }
}

void Lines::print(const Shown& line) {
  if (m_wantsGap) {
    m_print({});
  }
  m_print(line);
  m_wantsGap = false;
  ++m_count;
}

void Lines::heading(std::size_t indent, const Shown& title, const Shown& where) {
  const std::size_t width = widthBehind(indent);
  const Shown head = fitted(title, width);
  Shown line = blanks(indent) + styled(m_look.styled, "\x1b[1m", head);
  if (const std::size_t taken = columns(head.text()) + kGap; !where.text().empty() && taken < width) {
    line += blanks(kGap) + styled(m_look.styled, "\x1b[2m", fitted(where, width - taken));
  }
  print(line);
}

void Lines::rest(std::size_t indent, std::size_t count, const Shown& what) {
  if (count > 0) {
    line(indent, say("… {} more {}{}", count, what, count == 1 ? Shown() : Shown("s")));
    m_hasCut = true;
  }
}

}  // namespace tarn
