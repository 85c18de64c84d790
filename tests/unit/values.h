#pragma once
/// Value trees in tests: written down briefly and shown on one line.

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "json/mirel_json_value.h"

inline Value* text(const char* contents) {
  return new PrimitiveValue(contents);
}

inline ArrayValue* array(std::initializer_list<Value*> elements) {
  auto* result = new ArrayValue;
  for (Value* element : elements)
    result->push_back(element);
  return result;
}

inline ObjectValue* object(std::initializer_list<std::pair<const char*, Value*>> members) {
  auto* result = new ObjectValue("");
  for (const auto& [key, value] : members)
    result->addValue(new KeyValuePair(key, value));
  return result;
}

/// The tree as `{"a": "1", "b": ["x"], "c": null}`: texts as they are, no value as a bare null.
inline std::string compact(const Value* value) {
  const char* comma = "";
  std::string result;
  if (value == nullptr)
    return "null";
  if (const auto* primitive = dynamic_cast<const PrimitiveValue*>(value))
    return std::string("\"") + primitive->text().c_str() + '"';
  if (const auto* elements = dynamic_cast<const ArrayValue*>(value)) {
    for (unsigned long i = 0; i < elements->size(); ++i, comma = ", ")
      result += comma + compact((*elements)[i]);
    return '[' + result + ']';
  }
  for (const KeyValuePair* member : dynamic_cast<const ObjectValue&>(*value).getValues()) {
    result += std::string(comma) + '"' + member->getKey().c_str() + "\": " + compact(member->getValue());
    comma = ", ";
  }
  return '{' + result + '}';
}

/// The same for a tree that nobody else owns.
inline std::string compactOf(Value* owned) {
  return compact(std::unique_ptr<Value>(owned).get());
}
