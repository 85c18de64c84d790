#pragma once
/// Value trees in tests, shown on one line.

#include <memory>
#include <string>

#include "json/mirel_json_value.h"

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
