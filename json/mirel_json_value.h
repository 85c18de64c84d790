#pragma once
/// The document in memory: a tree of texts, arrays and objects.
///
/// Every scalar is text; there are no numbers, booleans or null. Containers own what is added to them,
/// keep insertion order and allow duplicate keys. Deleting a node deletes everything below it. A member or
/// element may have no value (null): it is what a query without an answer leaves, and is written as the
/// text "null".

#include <iosfwd>
#include <memory>
#include <string_view>
#include <variant>
#include <vector>

#include "common/mirel_string.h"
#include "json/mirel_json_folded.h"
#include "json/mirel_json_pair.h"
#include "json/mirel_json_visitor.h"

class mirel_string_builder;

class Value {
 public:
  virtual ~Value() = default;
  Value& operator=(const Value&) = delete;

  /// A deep copy, owned by the caller.
  virtual Value* clone() const = 0;
  /// The JSON text; `indent` is the nesting level the value stands at (two blanks a level).
  virtual mirel_string stringify(unsigned long indent) const = 0;
  virtual void accept(JsonVisitor& visitor) = 0;
  /// Null for every kind but the array.
  virtual Value* operator[](unsigned long index) const;
  /// Null for every kind but the object.
  virtual Value* operator[](const mirel_string& key) const;
  /// Appends what `stringify` gives.
  virtual void write(mirel_string_builder& out, unsigned long indent) const = 0;

 protected:
  Value() = default;
  Value(const Value&) = default;
};

/// One text.
class PrimitiveValue final : public Value, public NodeBlock {
 public:
  explicit PrimitiveValue(mirel_string text);
  /// Of a copy of the text, in one block.
  static PrimitiveValue* of(std::string_view text);

  const mirel_string& text() const { return m_text; }
  void setText(mirel_string text);

  PrimitiveValue* clone() const override;
  mirel_string stringify(unsigned long indent) const override;
  void accept(JsonVisitor& visitor) override;
  void write(mirel_string_builder& out, unsigned long indent) const override;

 private:
  mirel_string m_text;
};

/// Ordered elements.
class ArrayValue final : public Value {
 public:
  ArrayValue() = default;
  ArrayValue(const ArrayValue& other);
  ~ArrayValue() override;

  /// Takes the element over.
  void push_back(const Value* element);
  unsigned long size() const { return m_elements.size(); }

  ArrayValue* clone() const override;
  mirel_string stringify(unsigned long indent) const override;
  void accept(JsonVisitor& visitor) override;
  /// The element at `index`, which must be below `size`.
  Value* operator[](unsigned long index) const override;
  using Value::operator[];
  void write(mirel_string_builder& out, unsigned long indent) const override;

 private:
  std::vector<const Value*> m_elements;
};

/// Ordered members.
class ObjectValue final : public Value {
 public:
  /// Without a name.
  ObjectValue() = default;
  /// The name is what `addObject` files the object under; it is not part of the text.
  explicit ObjectValue(mirel_string name);
  /// Of these members, without a name.
  explicit ObjectValue(FoldedMembers members);
  ObjectValue(const ObjectValue& other);
  ~ObjectValue() override;

  const mirel_string& getName() const;
  const std::vector<KeyValuePair*>& getValues() const { return unfolded().values; }
  bool empty() const;

  /// Takes the member over.
  void addValue(KeyValuePair* member);
  /// Adds an object under its own name; takes it over.
  void addObject(ObjectValue* object);
  /// Takes the members from the `first` on over from the vector, in no more room than they need.
  void take(std::vector<std::unique_ptr<KeyValuePair>>* members, unsigned long first);

  /// Whether a member has exactly this key.
  bool hasKey(const mirel_string& key) const;
  /// The value of the first member with exactly this key. When there is none, or it has no value, a new
  /// empty object, owned by the caller; never null.
  Value* search(const mirel_string& key) const;
  /// Hands the value of the first member with exactly this key to the caller; null when there is none.
  Value* release(const mirel_string& key);

  ObjectValue* clone() const override;
  mirel_string stringify(unsigned long indent) const override;
  void accept(JsonVisitor& visitor) override;
  /// Same as `search`.
  Value* operator[](const mirel_string& key) const override;
  using Value::operator[];
  void write(mirel_string_builder& out, unsigned long indent) const override;

 private:
  struct Members {
    std::unique_ptr<const mirel_string> name;  ///< null when empty
    std::vector<KeyValuePair*> values;
  };

  KeyValuePair* memberOf(const mirel_string& key) const;
  Members& unfolded() const;

  mutable std::variant<Members, FoldedMembers> m_members;  ///< folded until they are asked for
};

/// Write `stringify(0)`.
std::ostream& operator<<(std::ostream& out, const Value& value);
std::ostream& operator<<(std::ostream& out, Value* value);
