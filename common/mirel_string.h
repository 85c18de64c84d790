#pragma once
/// The system's text type: a byte string with value semantics in one block of the platform allocator.
///
/// The text is always NUL-terminated and never holds a NUL itself. Searching ignores letter case,
/// comparing does not. Nothing throws: a string whose allocation failed has capacity and length 0, is lost,
/// and reads as the empty text everywhere.
///
/// Cost: every copy allocates once; moving is free. To put a text together from many pieces, append to a
/// `mirel_string_builder` (common/mirel_common_builder.h): `+=` and `+` copy everything each time.

#include <concepts>
#include <iosfwd>

class mirel_string {
 public:
  /// "Not found" as a position, "to the end" as a length.
  static constexpr unsigned long npos = ~0UL;

  /// The text of `s`; null gives the empty text.
  mirel_string(const char* s);
  /// The first `length` bytes of `s`, or what stands before the first NUL among them.
  mirel_string(const char* s, unsigned long length);
  /// Decimal numbers.
  mirel_string(int number);
  mirel_string(long number);
  mirel_string(unsigned int number);
  mirel_string(unsigned long number);

  mirel_string(const mirel_string& other);
  mirel_string(mirel_string&& other) noexcept;
  /// A text that is part of somebody else's block and stays as it is, NUL-terminated, for as long as the
  /// string: nothing is allocated, and nothing released. A copy is a text of its own.
  static mirel_string within(const char* text, unsigned long length);
  ~mirel_string();

  /// Releases the own text first. A string assigned to itself therefore reads as empty and keeps its
  /// length; nobody does that.
  mirel_string& operator=(const mirel_string& other);
  mirel_string& operator=(mirel_string&& other) noexcept;

  const char* c_str() const { return m_capacity == 0 || m_buffer == nullptr ? &s_terminator : m_buffer; }
  unsigned long length() const { return m_length; }
  /// Whether there was no memory for the text. Who acts on a text asks this first.
  bool lost() const { return m_capacity == 0; }

  /// The character at `index`; at or past the end the last character, of an empty text its terminator.
  const char& at(unsigned long index) const {
    return m_length == 0 ? s_terminator : m_buffer[index < m_length ? index : m_length - 1];
  }

  /// Copies at most `size` - 1 characters into `dest`, NUL-pads the rest, always terminates; size 0 does
  /// nothing.
  void copy_to(char* dest, unsigned long size) const;

  /// The text with a-z in upper case.
  mirel_string upper() const;

  /// `length` characters from `position` on, fewer at the end of the text.
  mirel_string substr(unsigned long position, unsigned long length) const&;
  /// The same in the block of a text that is not needed any more.
  mirel_string substr(unsigned long position, unsigned long length) &&;

  /// Position of the first `needle` at or after `from`, ignoring letter case; `npos` when there is none.
  unsigned long find(const mirel_string& needle, unsigned long from) const;

  /// Replaces every occurrence of `pattern`, ignoring letter case. Occurrences that overlap are handled in
  /// turn, each followed by the rest of the whole text: four backslashes, pairs replaced by one, give six.
  /// An empty pattern inserts the replacement before every character.
  mirel_string replace_all(const mirel_string& pattern, const mirel_string& replacement) const;

  /// The text without its leading blanks (0x20 only).
  mirel_string ltrim() const;

  /// Exact, over at most this string's capacity: one whose allocation failed equals every other string.
  bool operator==(const mirel_string& other) const;
  /// The same without an allocation.
  template <std::same_as<const char*> Text>
  // cppcheck-suppress passedByValue
  bool operator==(Text other) const {
    return equals(other);
  }
  mirel_string& operator+=(const mirel_string& other);
  friend mirel_string operator+(const mirel_string& a, const mirel_string& b);

  /// Allocates a zero-filled buffer; on failure capacity and length are 0 and the answer is false. The
  /// former buffer is not released.
  bool strAlloc(unsigned long capacity, unsigned long length);
  /// Releases the buffer; whether the platform took it back.
  bool strFree();

 private:
  friend class mirel_string_builder;

  /// Takes over a block that holds `length` characters and at least three NULs behind them.
  mirel_string(char* block, unsigned long length, unsigned long capacity);

  bool owns() const { return (m_capacity & kNotOwned) == 0; }
  /// Bytes of the text's block, or of its part of somebody else's.
  unsigned long capacity() const { return owns() ? m_capacity : m_length + 1; }
  void copyFrom(const mirel_string& other);
  bool equals(const char* other) const;
  template <class Number>
  void format(const char* pattern, Number number);

  /// Room behind every text: its terminator and two more NULs.
  static constexpr unsigned long kTail = 3;
  /// Instead of a capacity: the block is somebody else's.
  static constexpr unsigned long kNotOwned = 1UL << 63;
  static const char s_terminator;

  unsigned long m_capacity;  ///< bytes asked for, normally length + 3
  unsigned long m_length;
  char* m_buffer;
};

std::ostream& operator<<(std::ostream& out, const mirel_string& text);
