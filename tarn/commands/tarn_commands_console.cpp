#include "tarn/commands/tarn_commands_console.h"

#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tarn/document/tarn_document_nameless.h"
#include "tarn/document/tarn_document_source.h"

namespace tarn {

namespace {

constexpr std::size_t kKeptAtMost = 64 << 10;
constexpr std::int64_t kProgressPause = 100;  // milliseconds
constexpr std::size_t kUsualWidth = 80;

std::int64_t milliseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * std::int64_t{1000} + now.tv_nsec / 1'000'000;
}

std::size_t widthOf(int terminal) {
  winsize size = {};
  return ioctl(terminal, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

/// The text's beginning that fits a line of the terminal, never a part of a character.
std::string_view cutTo(std::string_view text, std::size_t width) {
  while (columns(text) > width) {
    text.remove_suffix(1);
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) {
      text.remove_suffix(1);
    }
  }
  return text;
}

/// Whether a terminal would take the bytes of UTF-8 for something else: the user's locale says so.
bool isPlain(int terminal) {
  const char* locale = "";
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const value = getenv(name);
    locale = *locale == '\0' && value != nullptr ? value : locale;
  }
  return isatty(terminal) != 0 && strcasestr(locale, "utf-8") == nullptr &&
         strcasestr(locale, "utf8") == nullptr;
}

Shown at(const Place& place) {
  return say("{}:{}", place.line, place.column);
}

}  // namespace

Console::Console(int input, int output, int error)
    : m_input(input),
      m_output(output),
      m_error(error),
      m_plainOutput(isPlain(output)),
      m_plainError(isPlain(error)),
      m_showsProgress(isatty(error) != 0) {}

void Console::line(const Shown& text) {
  bytes(m_plainOutput ? plain(text).text() : text.text());
  bytes("\n");
}

void Console::bytes(std::string_view exact) {
  if (exact.size() >= kKeptAtMost) {
    flush();
    return deliver(exact);
  }
  m_kept += exact;
  if (m_kept.size() >= kKeptAtMost) {
    flush();
  }
}

/// What goes wrong here goes wrong again, and is told, when the bytes are read and written.
std::size_t Console::pass(Source& source, std::size_t count) {
  flush();
  hideProgress();
  return m_lost ? 0 : source.send(m_output, count);
}

void Console::problem(std::string_view file, const Place& place, const Shown& text) {
  tell(say("{}:{}: {}", shown(file), at(place), text));
}

void Console::trouble(std::string_view file, const Shown& text) {
  trouble(say("{}: {}", shown(file), text));
}

void Console::trouble(std::string_view file, const Place& place, const Shown& text) {
  trouble(say("{}:{}: {}", shown(file), at(place), text));
}

void Console::trouble(const Shown& text) {
  m_troubled = true;
  tell(text);
}

void Console::note(const Shown& text) {
  tell(text);
}

/// Results that were there before come before it, where both streams go to one place.
void Console::tell(const Shown& text) {
  flush();
  hideProgress();
  writeAll(m_error, say("tarn: {}\n", m_plainError ? plain(text) : text).text());
}

void Console::progress(const Shown& text) {
  if (!isProgressDue()) {
    return;
  }
  m_progressTime = milliseconds();
  m_progressShown = true;
  const std::size_t width = widthOf(m_error);
  writeAll(m_error, "\r\x1b[K" + std::string(cutTo(text.text(), width > 1 ? width - 1 : kUsualWidth - 1)));
}

bool Console::isProgressDue() const {
  return m_showsProgress && milliseconds() - m_progressTime >= kProgressPause;
}

void Console::hideProgress() {
  if (m_progressShown) {
    writeAll(m_error, "\r\x1b[K");
    m_progressShown = false;
  }
}

bool Console::outputIsTerminal() const {
  return isatty(m_output) != 0;
}

std::size_t Console::width() const {
  if (const std::size_t width = widthOf(m_output); width > 0) {
    return width;
  }
  const char* const given = getenv("COLUMNS");
  const unsigned long width = given == nullptr ? 0 : strtoul(given, nullptr, 10);
  return width == 0 ? kUsualWidth : width;
}

void Console::flush() {
  if (!m_kept.empty()) {
    deliver(m_kept);
    m_kept.clear();
  }
}

void Console::deliver(std::string_view bytes) {
  hideProgress();
  if (!m_lost && !writeAll(m_output, bytes)) {
    m_lost = true;
    trouble("standard output", shown(strerror(errno)));
  }
}

}  // namespace tarn
