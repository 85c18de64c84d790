#pragma once

class Value;
class PrimitiveValue;
class KeyValuePair;
class ObjectValue;
class ArrayValue;

/// What walks a value tree. `accept` of a node calls the `visit` for its kind and goes no deeper: the
/// visitor decides whether and in which order to visit the children.
class JsonVisitor {
 public:
  virtual void visit(Value* value) = 0;
  virtual void visit(PrimitiveValue* value) = 0;
  virtual void visit(KeyValuePair* pair) = 0;
  virtual void visit(ObjectValue* object) = 0;
  virtual void visit(ArrayValue* array) = 0;

 protected:
  ~JsonVisitor() = default;
};
