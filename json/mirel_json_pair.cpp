#include "json/mirel_json_pair.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "common/mirel_common_builder.h"
#include "json/mirel_json_value.h"
#include "json/mirel_json_writer.h"

namespace {

char s_plainText;
char s_emptyText;

/// What the bits for a text's length can tell.
constexpr unsigned int kLongestPlain = 0x7fff'ffff;

/// Copies the text with a NUL behind it; what follows.
char* put(char* to, std::string_view text) {
  to = std::copy(text.begin(), text.end(), to);
  *to = '\0';
  return to + 1;
}

}  // namespace

Value* const KeyValuePair::kPlainText = reinterpret_cast<Value*>(&s_plainText);
Value* const KeyValuePair::kEmptyText = reinterpret_cast<Value*>(&s_emptyText);

KeyValuePair::KeyValuePair(mirel_string key, Value* value) : m_key(std::move(key)), m_value(value) {}

KeyValuePair::KeyValuePair(mirel_string key, mirel_string text)
    : KeyValuePair(std::move(key), new PrimitiveValue(std::move(text))) {}

KeyValuePair* KeyValuePair::of(std::string_view key, std::string_view text, bool unescaped) {
  if (text.size() > kLongestPlain) {
    std::unique_ptr<KeyValuePair> pair(of(key));
    pair->setValue(PrimitiveValue::of(text));
    return pair.release();
  }
  void* const block = operator new(sizeof(KeyValuePair) + sizeof(PlainText) + text.size() + key.size() + 2);
  auto* const plain = new (static_cast<KeyValuePair*>(block) + 1) PlainText;
  plain->length = static_cast<unsigned int>(text.size()) & kLongestPlain;
  plain->unescaped = unescaped;
  char* const ownKey = put(reinterpret_cast<char*>(plain + 1), text);
  put(ownKey, key);
  return ::new (block) KeyValuePair(mirel_string::within(ownKey, key.size()), kPlainText);
}

KeyValuePair* KeyValuePair::of(std::string_view key) {
  void* const block = operator new(sizeof(KeyValuePair) + key.size() + 1);
  char* const ownKey = reinterpret_cast<char*>(static_cast<KeyValuePair*>(block) + 1);
  put(ownKey, key);
  return ::new (block) KeyValuePair(mirel_string::within(ownKey, key.size()), static_cast<Value*>(nullptr));
}

KeyValuePair::~KeyValuePair() {
  setValue(nullptr);
}

KeyValuePair* KeyValuePair::clone() const {
  if (isPlain()) {
    return of(key(), text(), isUnescaped());
  }
  std::unique_ptr<KeyValuePair> copy(of(key()));
  copy->m_value = m_value == nullptr ? nullptr : m_value->clone();
  return copy.release();
}

void KeyValuePair::setKey(mirel_string key) {
  if (isUnescaped()) {
    getValue();  // that was known of the former key, too
  }
  m_key = std::move(key);
}

Value* KeyValuePair::getValue() const {
  if (isPlain()) {
    m_value = PrimitiveValue::of(text());
  }
  return m_value;
}

void KeyValuePair::setValue(Value* value) {
  if (!isPlain()) {
    delete m_value;
  }
  m_value = value;
}

void KeyValuePair::setEmpty() {
  setValue(kEmptyText);
}

Value* KeyValuePair::releaseValue() {
  getValue();
  return std::exchange(m_value, nullptr);
}

void KeyValuePair::accept(JsonVisitor& visitor) {
  visitor.visit(this);
}
