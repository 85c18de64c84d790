#include "tarn/template/tarn_template_walk.h"

#include "json/mirel_json_writer.h"
#include "tarn/document/tarn_document_path.h"

namespace tarn {

namespace {

mirel_string textOf(const Raw& raw) {
  const bool isPlain = raw.text.find('\\') == std::string_view::npos;
  return isPlain ? mirel_string(raw.text.data(), raw.text.size()) : undoEscapes(raw.text);
}

bool hasBlank(const Raw& raw) {
  return raw.text.find(' ') != std::string_view::npos;
}

}  // namespace

Value* Walk::run() {
  return container(m_source.nodes().front());
}

Value* Walk::container(const Node& node) {
  return node.type == NodeType::object ? object(node) : array(node);
}

Value* Walk::object(const Node& node) {
  auto result = std::make_unique<ObjectValue>("");
  const Node* const nodes = m_source.nodes().data();
  m_names.open();
  for (auto child = static_cast<std::uint32_t>(&node - nodes) + 1; child < node.end && m_sink.goesOn();
       child = nodes[child].end) {
    const std::size_t length = m_pointer.size();
    std::unique_ptr<KeyValuePair> pair = member(nodes[child]);
    m_pointer.resize(length);
    if (m_sink.keepsResult()) {
      result->addValue(pair.release());
    }
  }
  m_names.close();
  return m_sink.keepsResult() ? result.release() : nullptr;
}

Value* Walk::array(const Node& node) {
  auto result = std::make_unique<ArrayValue>();
  const Node* const nodes = m_source.nodes().data();
  const std::size_t length = m_pointer.size();
  std::size_t index = 0;
  for (auto child = static_cast<std::uint32_t>(&node - nodes) + 1; child < node.end && m_sink.goesOn();
       child = nodes[child].end) {
    m_pointer += '/' + std::to_string(index++);
    const Value* const value = element(nodes[child]);
    m_pointer.resize(length);
    if (m_sink.keepsResult()) {
      result->push_back(value);
    }
  }
  return m_sink.keepsResult() ? result.release() : nullptr;
}

/// Strings are copied.
Value* Walk::element(const Node& node) {
  if (node.type != NodeType::text) {
    return container(node);
  }
  return m_sink.keepsResult() ? new PrimitiveValue(textOf(m_source.text(node))) : nullptr;
}

/// Strings of one word are neither commands nor repeat anything.
std::unique_ptr<KeyValuePair> Walk::member(const Node& node) {
  const bool isText = node.type == NodeType::text;
  const Raw key = m_source.key(node);
  const bool isPlain = !hasBlank(key) && !(isText && hasBlank(m_source.text(node)));
  Value* const value =
      isText ? static_cast<Value*>(new PrimitiveValue(textOf(m_source.text(node)))) : new ObjectValue("");
  auto pair = std::make_unique<KeyValuePair>(textOf(key), value);
  if (isPlain) {
    pushName(pair->getKey());
  } else {
    evaluate(*pair, node);
  }
  if (!isText) {
    pair->setValue(dynamic_cast<ArrayValue*>(pair->getValue()) != nullptr ? repeated(*pair, node)
                                                                          : container(node));
  }
  return pair;
}

/// A container is stood for by an empty object, which tells whether its key repeats it.
void Walk::evaluate(KeyValuePair& pair, const Node& node) {
  m_sink.begins(node.type == NodeType::text ? textOf(m_source.text(node)) : "");
  m_generator.visit(&pair);
  pushName(pair.getKey());
  m_sink.ends(m_pointer, pair);
}

Value* Walk::repeated(KeyValuePair& pair, const Node& node) {
  auto copies = std::make_unique<ArrayValue>();
  const std::size_t length = m_pointer.size();
  for (unsigned long copy = 0; copy < static_cast<ArrayValue*>(pair.getValue())->size(); ++copy) {
    m_pointer += '/' + std::to_string(copy);
    copies->push_back(container(node));
    m_pointer.resize(length);
  }
  return copies.release();
}

void Walk::pushName(const mirel_string& name) {
  NameHash hash;
  hash.add({name.c_str(), name.length()});
  const std::uint32_t number = m_names.numberOf(hash.value());
  m_pointer += '/';
  appendToken({name.c_str(), name.length()}, m_pointer);
  if (number > 1) {
    m_pointer += '#' + std::to_string(number);
  }
}

}  // namespace tarn
