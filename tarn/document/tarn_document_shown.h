#pragma once
/// Text that is safe to show on a terminal.
///
/// Whatever comes from a document, a template, a file name or the system goes through `shown` before it is
/// printed; the console takes nothing else, so the compiler finds who forgot. C0 and C1 controls, DEL and
/// bytes that are no UTF-8 appear as `\xNN`; bidirectional controls, line and paragraph separators and other
/// invisible format characters as `\u{…}`.

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tarn {

class Shown {
 public:
  Shown() = default;
  /// Our own words.
  template <std::size_t size>
  Shown(const char (&literal)[size]) : m_text(literal, size - 1) {}
  template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
  explicit Shown(Number number) : m_text(fmt::to_string(number)) {}

  Shown& operator+=(const Shown& more) {
    m_text += more.m_text;
    return *this;
  }
  friend Shown operator+(Shown text, const Shown& more) { return std::move(text += more); }

  const std::string& text() const { return m_text; }

 private:
  friend Shown shown(std::string_view foreign);
  friend Shown shownLines(std::string_view foreign);
  friend Shown fitted(const Shown& text, std::size_t width);
  friend std::vector<Shown> folded(const Shown& text, std::size_t width);
  friend Shown plain(const Shown& text);
  friend Shown blanks(std::size_t count);
  template <class... Parts>
  friend Shown say(fmt::format_string<const Parts&...> format, const Parts&... parts);

  std::string m_text;
};

/// Foreign text on one line: line feeds are shown as `\x0a`.
Shown shown(std::string_view foreign);
/// Foreign text that may go over several lines: line feeds stay, and tabs are blanks up to the next stop.
Shown shownLines(std::string_view foreign);

/// The text if it is not wider than that many columns, else its beginning with "…" behind it.
Shown fitted(const Shown& text, std::size_t width);

/// The text on lines of at most that many columns, broken at blanks where there are any.
std::vector<Shown> folded(const Shown& text, std::size_t width);

/// The text for a terminal that knows no more than ASCII: bars and signs of ours as similar characters, all
/// others as `\u{…}`.
Shown plain(const Shown& text);

/// That many blanks.
Shown blanks(std::size_t count);

/// Puts a text together by a format of ours (fmt). Parts are `Shown` or numbers.
template <class... Parts>
Shown say(fmt::format_string<const Parts&...> format, const Parts&... parts) {
  static_assert(((std::is_same_v<Parts, Shown> || std::is_arithmetic_v<Parts>)&&...),
                "foreign text goes through shown()");
  Shown result;
  result.m_text = fmt::format(format, parts...);
  return result;
}

/// Whether a terminal would obey the character, or not show it at all.
bool isHidden(char32_t character);

/// How many terminal columns the text takes: wide characters of East Asian scripts two, combining marks none.
std::size_t columns(std::string_view text);

}  // namespace tarn

template <>
struct fmt::formatter<tarn::Shown> : fmt::formatter<std::string_view> {
  template <class Context>
  auto format(const tarn::Shown& shown, Context& context) const {
    return fmt::formatter<std::string_view>::format(shown.text(), context);
  }
};
