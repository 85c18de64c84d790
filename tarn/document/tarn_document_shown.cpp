#include "tarn/document/tarn_document_shown.h"

#include <algorithm>

#include "tarn/document/tarn_document_utf8.h"

namespace tarn {

namespace {

struct Range {
  char32_t first, last;
};

/// Characters without a shape of their own that change how others are shown, or where lines end.
constexpr Range kInvisible[] = {{0xAD, 0xAD},     {0x61C, 0x61C},   {0x180E, 0x180E},
                                {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F},
                                {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};

/// Wide and full-width characters (Unicode Standard Annex 11).
constexpr Range kWide[] = {{0x1100, 0x115F}, {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97F},
                           {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                           {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

/// Combining marks.
constexpr Range kCombining[] = {{0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},
                                {0x64B, 0x65F},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF},
                                {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};

template <std::size_t size>
bool isIn(const Range (&ranges)[size], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges), [character](Range range) {
    return character >= range.first && character <= range.last;
  });
}

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

void appendBytes(std::string_view bytes, std::string& text) {
  for (const char byte : bytes) {
    fmt::format_to(std::back_inserter(text), "\\x{:02x}", static_cast<unsigned char>(byte));
  }
}

void appendShown(std::string_view bytes, const Utf8& next, std::string& text) {
  if (!next.valid) {
    appendBytes(bytes, text);
  } else if (isControl(next.character)) {
    fmt::format_to(std::back_inserter(text), "\\x{:02x}", static_cast<unsigned>(next.character));
  } else if (isIn(kInvisible, next.character)) {
    fmt::format_to(std::back_inserter(text), "\\u{{{:x}}}", static_cast<unsigned>(next.character));
  } else {
    text += bytes;
  }
}

/// Bytes of the text's beginning that take at most that many columns; one character at least.
std::size_t bytesIn(std::string_view text, std::size_t width) {
  std::size_t end = nextUtf8(text).length;
  std::size_t taken = columns(text.substr(0, end));
  while (end < text.size()) {
    const std::size_t length = nextUtf8(text.substr(end)).length;
    taken += columns(text.substr(end, length));
    if (taken > width) {
      break;
    }
    end += length;
  }
  return end;
}

constexpr std::size_t kTabStop = 8;

struct Likeness {
  std::string_view sign, like;
};
constexpr Likeness kLike[] = {{"█", "#"}, {"░", "."}, {"▏", "|"}, {"…", "~"}, {"→", "->"}};

}  // namespace

bool isHidden(char32_t character) {
  return isControl(character) || isIn(kInvisible, character);
}

Shown shown(std::string_view foreign) {
  Shown result;
  while (!foreign.empty()) {
    const Utf8 next = nextUtf8(foreign);
    appendShown(foreign.substr(0, next.length), next, result.m_text);
    foreign.remove_prefix(next.length);
  }
  return result;
}

Shown shownLines(std::string_view foreign) {
  Shown result;
  std::size_t column = 0;
  while (!foreign.empty()) {
    const std::size_t end = std::min(foreign.find_first_of("\n\t"), foreign.size());
    const Shown part = shown(foreign.substr(0, end));
    result += part;
    column += columns(part.m_text);
    if (end < foreign.size() && foreign[end] == '\t') {
      const Shown gap = blanks(kTabStop - column % kTabStop);
      result += gap;
      column += gap.m_text.size();
    } else if (end < foreign.size()) {
      result.m_text += '\n';
      column = 0;
    }
    foreign.remove_prefix(std::min(end + 1, foreign.size()));
  }
  return result;
}

Shown fitted(const Shown& text, std::size_t width) {
  const std::string_view all = text.m_text;
  std::size_t taken = 0;
  std::size_t end = 0;  // of what fits with the sign behind it
  for (std::size_t at = 0; at < all.size();) {
    const std::size_t length = nextUtf8(all.substr(at)).length;
    taken += columns(all.substr(at, length));
    if (taken > width) {
      Shown cut;
      cut.m_text.append(all.substr(0, end)).append("…");
      return cut;
    }
    at += length;
    end = taken < width ? at : end;
  }
  return text;
}

std::vector<Shown> folded(const Shown& text, std::size_t width) {
  std::vector<Shown> lines;
  for (std::string_view rest = text.m_text; !rest.empty();) {
    std::size_t end = bytesIn(rest, width);
    std::size_t next = end;
    const std::size_t blank = end == rest.size() ? std::string_view::npos : rest.rfind(' ', end);
    if (blank != std::string_view::npos && blank > 0) {
      end = blank;
      next = blank + 1;
    }
    lines.emplace_back().m_text = rest.substr(0, end);
    rest.remove_prefix(next);
  }
  return lines;
}

Shown plain(const Shown& text) {
  Shown result;
  for (std::string_view rest = text.m_text; !rest.empty();) {
    const Utf8 next = nextUtf8(rest);
    const auto* const like = std::find_if(std::begin(kLike), std::end(kLike),
                                          [rest](const Likeness& one) { return rest.starts_with(one.sign); });
    if (like != std::end(kLike)) {
      result.m_text += like->like;
    } else if (next.length > 1) {
      fmt::format_to(std::back_inserter(result.m_text), "\\u{{{:x}}}", static_cast<unsigned>(next.character));
    } else {
      result.m_text += rest[0];
    }
    rest.remove_prefix(next.length);
  }
  return result;
}

Shown blanks(std::size_t count) {
  Shown result;
  result.m_text.assign(count, ' ');
  return result;
}

std::size_t columns(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    const Utf8 next = nextUtf8(text);
    count += isIn(kWide, next.character) ? 2 : isIn(kCombining, next.character) ? 0 : 1;
    text.remove_prefix(next.length);
  }
  return count;
}

}  // namespace tarn
