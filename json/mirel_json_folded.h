#pragma once
/// The members of an object in their compact form: the text that they are written as, not a tree node each.
///
/// A catalog may answer with a million rows, and most of them are only ever written out. An `ObjectValue`
/// made of folded members turns them into nodes when somebody asks for them; until then it takes a fifth of
/// the memory, and writing it is copying.

#include <memory>
#include <vector>

#include "common/mirel_common_builder.h"
#include "common/mirel_string.h"

class KeyValuePair;
struct RawString;

/// What `MemberLines` gathered.
class FoldedMembers {
 public:
  bool empty() const { return m_lines.length() == 0; }
  /// Appends the members as an object writes them, each with its separator; `indent` levels deep.
  void write(mirel_string_builder& out, unsigned long indent) const;
  /// The members as nodes. Objects among them stay folded.
  std::vector<std::unique_ptr<KeyValuePair>> unfold() const;

 private:
  friend class MemberLines;
  class Unfolding;
  FoldedMembers(mirel_string lines, unsigned long count, unsigned long levels);

  mirel_string m_lines;   ///< as they are written, without their indentation: no text in them has a line feed
  unsigned long m_count;  ///< of lines
  unsigned long m_levels;  ///< the sum of the levels that they stand below the members
};

/// Gathers the members of an object; `clear` begins the next one.
class MemberLines {
 public:
  void clear();

  /// Begins a member, or an element of an array. A member's key and its value follow, or the element.
  void next();
  void key(const char* name, unsigned long length);
  void key(const RawString& string);
  void text(const char* text, unsigned long length);
  void text(const RawString& string);
  /// A container that is not empty: '{' or '[', its members or elements, and the bracket that closes it.
  void open(char bracket);
  void close(char bracket);

  unsigned long length() const { return m_lines.length(); }
  /// What was gathered since `clear`.
  FoldedMembers folded() const;

 private:
  void beginLine();

  mirel_string_builder m_lines;
  bool m_first = true;  ///< whether no member or element of the innermost container has begun
  unsigned long m_level = 0;
  unsigned long m_count = 1;
  unsigned long m_levels = 0;
};
