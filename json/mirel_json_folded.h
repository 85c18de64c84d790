#pragma once
/// A row that a query answered with, in its compact form: the text that its members are written as, not a
/// tree node each.
///
/// A catalog may answer with a million rows, and most of them are only ever written out. An `ObjectValue`
/// made of folded members turns them into nodes when somebody asks for them; until then it takes two fifths
/// of the memory, and writing it is copying.

#include <memory>
#include <vector>

#include "common/mirel_common_builder.h"
#include "common/mirel_string.h"

class KeyValuePair;

/// What `MemberLines` gathered.
class FoldedMembers {
 public:
  bool empty() const { return m_lines.length() == 0; }
  /// Appends the members as an object writes them, each with its separator; `indent` levels deep.
  void write(mirel_string_builder& out, unsigned long indent) const;
  /// The members as nodes.
  std::vector<std::unique_ptr<KeyValuePair>> unfold() const;

 private:
  friend class MemberLines;
  FoldedMembers(mirel_string lines, unsigned long count);

  mirel_string m_lines;   ///< as they are written, without their indentation: no text in them has a line feed
  unsigned long m_count;  ///< of lines
};

/// Gathers the members of rows that share their keys, one row at a time.
class MemberLines {
 public:
  /// The next key; they are told once, and counted from 0.
  void addKey(const mirel_string& key);
  /// Begins a row.
  void clear();
  void add(unsigned long key, const char* text, unsigned long length);
  /// What was gathered since `clear`.
  FoldedMembers folded() const;

 private:
  std::vector<mirel_string> m_beginnings;  ///< of lines, up to where their texts begin: the keys as written
  mirel_string_builder m_lines;
  unsigned long m_count = 0;
};
