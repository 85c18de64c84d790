#pragma once
/// Reads objects straight into their folded form.
///
/// The parser asks here first for every object but the root. Objects that need its own rules (what is wrong,
/// an empty container, escapes that overlap), that are large, or that hold many levels, are left to it; it
/// asks again for what they hold. This pays for documents that are copied or written; who walks one unfolds
/// it.

#include "json/mirel_json_folded.h"

class FoldReader {
 public:
  /// How many levels of containers an object may hold, itself included.
  static constexpr unsigned long kLevels = 8;

  /// From now on reads objects of the text that ends at `end`, where a NUL stands.
  void start(const char* end);

  /// Reads the object whose opening brace is at `text`; false when it is left to the parser. From then on
  /// so is all that begins before the place where the reading ended: it reads no part of the text twice.
  bool read(const char* text);

  /// Of the object just read, after a `read` that was true: its members; what follows it; ...
  FoldedMembers folded() const { return m_members.folded(); }
  const char* after() const { return m_at; }
  /// ... the line feeds between its tokens, and what follows the last of them.
  unsigned long lines() const { return m_lines; }
  const char* lastLine() const { return m_lastLine; }

 private:
  bool readMembers(unsigned long level);
  bool readElements(unsigned long level);
  bool readValue(unsigned long level);
  bool readString(RawString* string);
  bool take(char token);
  void skipBlanks();

  const char* m_end = nullptr;
  const char* m_at = nullptr;
  const char* m_stuck = nullptr;  ///< where the last object that was left to the parser ended the reading
  MemberLines m_members;
  unsigned long m_lines = 0;
  const char* m_lastLine = nullptr;
};
