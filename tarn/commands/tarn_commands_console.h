#pragma once
/// Where a command's results and troubles go: standard output and standard error, told apart from a terminal,
/// safe to show, and remembered for the exit status.

#include <cstdint>
#include <string>
#include <string_view>

#include "tarn/document/tarn_document_reader.h"
#include "tarn/document/tarn_document_shown.h"

namespace tarn {

class Source;

class Console {
 public:
  /// Descriptors, not owned. `input` is what the file name "-" stands for.
  Console(int input, int output, int error);
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// A line of results.
  void line(const Shown& text);
  /// Bytes that a reader asked for as they are: a document, JSON, a page. Nothing is added.
  void bytes(std::string_view exact);
  /// The same for the next bytes of a source, at most `count`, where the system copies them by itself. How
  /// many they were; when 0 they have to be read.
  std::size_t pass(Source& source, std::size_t count);

  /// `tarn: FILE:LINE:COLUMN: text` or `tarn: FILE: text` or `tarn: text` on standard error. A problem is
  /// what a command looks for; trouble is what keeps it from looking, and makes the exit status 2.
  void problem(std::string_view file, const Place& place, const Shown& text);
  void trouble(std::string_view file, const Shown& text);
  void trouble(std::string_view file, const Place& place, const Shown& text);
  void trouble(const Shown& text);
  /// A line of standard error that is neither: counts, hints. Prefixed like the others.
  void note(const Shown& text);

  /// Replaces the progress line on a terminal's standard error, at most ten times a second; nothing
  /// elsewhere.
  void progress(const Shown& text);
  /// Whether the progress line would be replaced now.
  bool isProgressDue() const;

  int input() const { return m_input; }
  bool outputIsTerminal() const;
  /// Columns of the terminal, of COLUMNS otherwise, else 80.
  std::size_t width() const;
  bool troubled() const { return m_troubled; }

  /// Writes what is still kept. Output that cannot be written is trouble; a reader that went away (EPIPE)
  /// ends the program silently as it does others.
  void flush();

 private:
  void tell(const Shown& text);
  void deliver(std::string_view bytes);
  void hideProgress();

  int m_input, m_output, m_error;
  bool m_plainOutput, m_plainError;  ///< nothing but ASCII is shown there
  std::string m_kept;
  const bool m_showsProgress;
  bool m_troubled = false, m_lost = false, m_progressShown = false;
  std::int64_t m_progressTime = 0;
};

}  // namespace tarn
