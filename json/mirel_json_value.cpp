#include "json/mirel_json_value.h"

#include <algorithm>
#include <utility>

namespace {

Value* cloneOf(const Value* value) {
  return value == nullptr ? nullptr : value->clone();
}

}  // namespace

Value* Value::operator[](unsigned long) const {
  return nullptr;
}
Value* Value::operator[](const mirel_string&) const {
  return nullptr;
}

PrimitiveValue::PrimitiveValue(mirel_string text) : m_text(std::move(text)) {}

void PrimitiveValue::setText(mirel_string text) {
  m_text = std::move(text);
}

PrimitiveValue* PrimitiveValue::clone() const {
  return new PrimitiveValue(*this);
}

void PrimitiveValue::accept(JsonVisitor& visitor) {
  visitor.visit(this);
}

// The copy counts as made before its elements are: should memory run out among them, it is destroyed whole.
ArrayValue::ArrayValue(const ArrayValue& other) : ArrayValue() {
  m_elements.reserve(other.m_elements.size());
  for (const Value* element : other.m_elements) {
    push_back(cloneOf(element));
  }
}

ArrayValue::~ArrayValue() {
  for (const Value* element : m_elements) {
    delete element;
  }
}

void ArrayValue::push_back(const Value* element) {
  std::unique_ptr<const Value> owned(element);
  m_elements.push_back(element);
  static_cast<void>(owned.release());
}

ArrayValue* ArrayValue::clone() const {
  return new ArrayValue(*this);
}

void ArrayValue::accept(JsonVisitor& visitor) {
  visitor.visit(this);
}

// Elements are stored as they were handed over; whoever walks the tree may change them.
Value* ArrayValue::operator[](unsigned long index) const {
  return const_cast<Value*>(m_elements[index]);
}

KeyValuePair::KeyValuePair(mirel_string key, Value* value) : m_key(std::move(key)), m_value(value) {}

KeyValuePair::KeyValuePair(mirel_string key, mirel_string text)
    : KeyValuePair(std::move(key), new PrimitiveValue(std::move(text))) {}

KeyValuePair::~KeyValuePair() {
  delete m_value;
}

void KeyValuePair::setKey(mirel_string key) {
  m_key = std::move(key);
}

void KeyValuePair::setValue(Value* value) {
  delete m_value;
  m_value = value;
}

Value* KeyValuePair::releaseValue() {
  return std::exchange(m_value, nullptr);
}

void KeyValuePair::accept(JsonVisitor& visitor) {
  visitor.visit(this);
}

ObjectValue::ObjectValue(mirel_string name) : m_members(Members{std::move(name), {}}) {}

ObjectValue::ObjectValue(FoldedMembers members) : m_members(std::move(members)) {}

// As with arrays, the members come into a whole object.
ObjectValue::ObjectValue(const ObjectValue& other) : ObjectValue("") {
  if (const auto* folded = std::get_if<FoldedMembers>(&other.m_members)) {
    m_members = *folded;
    return;
  }
  const auto& [name, values] = other.unfolded();
  unfolded().name = name;
  unfolded().values.reserve(values.size());
  for (const KeyValuePair* member : values) {
    addValue(new KeyValuePair(member->getKey(), cloneOf(member->getValue())));
  }
}

ObjectValue::~ObjectValue() {
  if (const auto* members = std::get_if<Members>(&m_members)) {
    for (KeyValuePair* member : members->values) {
      delete member;
    }
  }
}

bool ObjectValue::empty() const {
  const auto* folded = std::get_if<FoldedMembers>(&m_members);
  return folded != nullptr ? folded->empty() : getValues().empty();
}

void ObjectValue::addValue(KeyValuePair* member) {
  std::unique_ptr<KeyValuePair> owned(member);
  unfolded().values.push_back(member);
  static_cast<void>(owned.release());
}

void ObjectValue::addObject(ObjectValue* object) {
  std::unique_ptr<ObjectValue> owned(object);
  mirel_string name = object->getName();  // may unfold
  addValue(new KeyValuePair(std::move(name), owned.release()));
}

KeyValuePair* ObjectValue::memberOf(const mirel_string& key) const {
  for (KeyValuePair* member : getValues()) {
    if (key == member->getKey()) {
      return member;
    }
  }
  return nullptr;
}

bool ObjectValue::hasKey(const mirel_string& key) const {
  return memberOf(key) != nullptr;
}

Value* ObjectValue::search(const mirel_string& key) const {
  const KeyValuePair* member = memberOf(key);
  const bool found = member != nullptr && member->getValue() != nullptr;
  return found ? member->getValue() : new ObjectValue("");
}

Value* ObjectValue::release(const mirel_string& key) {
  KeyValuePair* member = memberOf(key);
  return member == nullptr ? nullptr : member->releaseValue();
}

ObjectValue::Members& ObjectValue::unfolded() const {
  if (const auto* folded = std::get_if<FoldedMembers>(&m_members)) {
    std::vector<std::unique_ptr<KeyValuePair>> nodes = folded->unfold();
    auto& values = m_members.emplace<Members>(Members{"", std::vector<KeyValuePair*>(nodes.size())}).values;
    std::transform(nodes.begin(), nodes.end(), values.begin(), [](auto& node) { return node.release(); });
  }
  return std::get<Members>(m_members);
}

ObjectValue* ObjectValue::clone() const {
  return new ObjectValue(*this);
}

void ObjectValue::accept(JsonVisitor& visitor) {
  visitor.visit(this);
}

Value* ObjectValue::operator[](const mirel_string& key) const {
  return search(key);
}
