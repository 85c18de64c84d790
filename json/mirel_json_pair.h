#pragma once
/// The unit that objects are made of.

#include <cstddef>
#include <new>
#include <string_view>

#include "common/mirel_string.h"
#include "json/mirel_json_visitor.h"

class mirel_string_builder;

/// What nodes are made in: their own size, and room behind them for the texts that they are made with.
struct NodeBlock {
  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* block) { ::operator delete(block); }
};

/// A key and its value.
///
/// Most members of a document are a key and a text that nobody looks at. One block holds both (`of`), and the
/// text becomes a node of the tree when somebody asks for the value.
class KeyValuePair final : public NodeBlock {
 public:
  /// Takes the value over.
  KeyValuePair(mirel_string key, Value* value);
  KeyValuePair(mirel_string key, mirel_string text);
  /// Of copies of the texts, in one block. `unescaped`: they are written as they are, without any escape.
  static KeyValuePair* of(std::string_view key, std::string_view text, bool unescaped);
  /// The same of a key that has no value yet.
  static KeyValuePair* of(std::string_view key);
  ~KeyValuePair();
  KeyValuePair(const KeyValuePair&) = delete;
  KeyValuePair& operator=(const KeyValuePair&) = delete;

  /// A deep copy, owned by the caller.
  KeyValuePair* clone() const;

  const mirel_string& getKey() const { return m_key; }
  void setKey(mirel_string key);
  Value* getValue() const;
  /// The value while it is no node but a text; else null.
  const char* plainText() const { return isPlain() ? text().data() : nullptr; }
  /// Deletes the former value and takes the new one over.
  void setValue(Value* value);
  /// Deletes the value; the empty text takes its place, which needs no memory.
  void setEmpty();
  /// Hands the value to the caller; the pair is left without one.
  Value* releaseValue();

  void accept(JsonVisitor& visitor);
  /// Appends the member as an object writes it, with its separator.
  void write(mirel_string_builder& out, unsigned long indent) const;

 private:
  /// What follows a pair in its block, before its text and its key, each with a NUL.
  struct PlainText {
    unsigned int length : 31;
    unsigned int unescaped : 1;

    const char* text() const { return reinterpret_cast<const char*>(this + 1); }
  };

  bool isPlain() const { return m_value == kPlainText || m_value == kEmptyText; }
  const PlainText& plain() const { return *reinterpret_cast<const PlainText*>(this + 1); }
  bool isUnescaped() const { return m_value == kPlainText && plain().unescaped; }
  std::string_view text() const {
    return m_value == kPlainText ? std::string_view(plain().text(), plain().length) : "";
  }
  std::string_view key() const { return {m_key.c_str(), m_key.length()}; }

  /// Stand for a value that is still a text behind the pair, and for one that is the empty text.
  static Value* const kPlainText;
  static Value* const kEmptyText;

  mirel_string m_key;
  mutable Value* m_value;
};
