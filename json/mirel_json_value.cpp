#include "json/mirel_json_value.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

Value* cloneOf(const Value* value) {
  return value == nullptr ? nullptr : value->clone();
}

/// Those from the `first` on, into no more room than they need.
void handOver(std::vector<std::unique_ptr<KeyValuePair>>* from, unsigned long first,
              std::vector<KeyValuePair*>* to) {
  to->reserve(to->size() + from->size() - first);
  std::transform(from->begin() + static_cast<long>(first), from->end(), std::back_inserter(*to),
                 [](auto& member) { return member.release(); });
  from->resize(first);
}

}  // namespace

Value* Value::operator[](unsigned long) const {
  return nullptr;
}
Value* Value::operator[](const mirel_string&) const {
  return nullptr;
}

PrimitiveValue::PrimitiveValue(mirel_string text) : m_text(std::move(text)) {}

PrimitiveValue* PrimitiveValue::of(std::string_view text) {
  void* const block = operator new(sizeof(PrimitiveValue) + text.size() + 1);
  char* const ownText = reinterpret_cast<char*>(static_cast<PrimitiveValue*>(block) + 1);
  *std::copy(text.begin(), text.end(), ownText) = '\0';
  return ::new (block) PrimitiveValue(mirel_string::within(ownText, text.size()));
}

void PrimitiveValue::setText(mirel_string text) {
  m_text = std::move(text);
}

PrimitiveValue* PrimitiveValue::clone() const {
  return of({m_text.c_str(), m_text.length()});
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

ObjectValue::ObjectValue(mirel_string name) {
  if (name.length() > 0) {
    unfolded().name = std::make_unique<const mirel_string>(std::move(name));
  }
}

ObjectValue::ObjectValue(FoldedMembers members) : m_members(std::move(members)) {}

// As with arrays, the members come into a whole object.
ObjectValue::ObjectValue(const ObjectValue& other) : ObjectValue(other.getName()) {
  const auto* folded = std::get_if<FoldedMembers>(&other.m_members);
  if (folded != nullptr) {
    m_members = *folded;
    return;
  }
  unfolded().values.reserve(other.getValues().size());
  for (const KeyValuePair* member : other.getValues()) {
    addValue(member->clone());
  }
}

ObjectValue::~ObjectValue() {
  if (const auto* members = std::get_if<Members>(&m_members)) {
    for (KeyValuePair* member : members->values) {
      delete member;
    }
  }
}

const mirel_string& ObjectValue::getName() const {
  static const mirel_string none = mirel_string::within("", 0);
  const auto* members = std::get_if<Members>(&m_members);
  return members == nullptr || members->name == nullptr ? none : *members->name;
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
  auto member = std::make_unique<KeyValuePair>(object->getName(), static_cast<Value*>(nullptr));
  member->setValue(owned.release());
  addValue(member.release());
}

void ObjectValue::take(std::vector<std::unique_ptr<KeyValuePair>>* members, unsigned long first) {
  handOver(members, first, &unfolded().values);
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
  return found ? member->getValue() : new ObjectValue;
}

Value* ObjectValue::release(const mirel_string& key) {
  KeyValuePair* member = memberOf(key);
  return member == nullptr ? nullptr : member->releaseValue();
}

ObjectValue::Members& ObjectValue::unfolded() const {
  if (const auto* folded = std::get_if<FoldedMembers>(&m_members)) {
    std::vector<std::unique_ptr<KeyValuePair>> nodes = folded->unfold();
    Members members;
    handOver(&nodes, 0, &members.values);
    m_members = std::move(members);
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
