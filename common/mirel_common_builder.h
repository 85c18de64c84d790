#pragma once
/// Puts a text together piece by piece and yields one `mirel_string` at the end.
///
/// The block grows geometrically, so the cost is linear in the text, and the yielded string takes the
/// block over. Whoever appends makes sure that no piece holds a NUL. Once an allocation has failed every
/// further piece is dropped and the result is the empty text: never a part that looks whole.

#include <cstring>

#include "common/mirel_string.h"

class mirel_string_builder {
 public:
  mirel_string_builder() = default;
  ~mirel_string_builder();
  mirel_string_builder(const mirel_string_builder&) = delete;
  mirel_string_builder& operator=(const mirel_string_builder&) = delete;

  void append(const char* text, unsigned long length) {
    if (length == 0 || !reserve(length)) {
      return;
    }
    memcpy(m_block + m_length, text, length);
    m_length += length;
  }
  void append(const char* text) { append(text, strlen(text)); }
  /// A lost text loses the whole.
  void append(const mirel_string& text) {
    if (text.lost()) {
      fail();
    }
    append(text.c_str(), text.length());
  }
  void append(char character) { append(&character, 1); }
  void append(unsigned long count, char character);
  /// Appends `count` characters that the caller fills in. Null when there is nothing to fill in: while
  /// measuring, or once an allocation has failed.
  char* extend(unsigned long count) {
    if (!reserve(count)) {
      return nullptr;
    }
    m_length += count;
    return m_block + m_length - count;
  }

  /// Takes the last `count` characters back, at most all.
  void removeLast(unsigned long count) { m_length -= count < m_length ? count : m_length; }

  /// Makes room for `more` characters at once, if there is memory for them.
  void expect(unsigned long more);

  /// On an empty builder: until `endMeasuring`, what is appended is only counted, at least as much as it is;
  /// then there is room for that.
  void startMeasuring() { m_measuring = true; }
  void endMeasuring();

  /// The characters so far, without a terminator.
  const char* begin() const { return m_block; }
  unsigned long length() const { return m_length; }
  bool failed() const { return m_failed; }
  /// Gives the text up, as a failed allocation does.
  void fail();

  /// The text so far; the builder is empty afterwards.
  mirel_string take();

 private:
  /// Makes room for `more` characters; false while measuring, or once an allocation has failed.
  bool reserve(unsigned long more) { return more <= m_room - m_length || grow(more); }
  bool grow(unsigned long more);
  bool resize(unsigned long room);
  void moveTo(char* block, unsigned long room);

  char* m_block = nullptr;
  unsigned long m_length = 0;
  unsigned long m_room = 0;  ///< characters that fit, the terminating NULs apart
  unsigned long m_measured = 0;
  bool m_measuring = false;
  bool m_failed = false;
};
