#include "generator/mirel_generator_walk.h"

#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "common/mirel_common_console.h"
#include "common/mirel_common_memory.h"

namespace {

std::string_view firstWord(const char* text) {
  return {text, strcspn(text, " ")};
}

/// The key that the third word of a "$foreach" key names: the brackets, or whatever stands there, go.
std::string_view withoutBrackets(std::string_view word) {
  return word.size() < 2 ? "" : word.substr(1, word.size() - 2);
}

}  // namespace

void Generator::set(mirel_string database, CustomerCollector* customer) {
  if (database.length() > 1) {
    showWork("connecting");
    MemoryWatch::during([&] {
      if (sqlSucceeded(m_connection.connect(database))) {
        m_databaseName = std::move(database);
      }
    });
  }
  m_customer = customer;
  showWork("taking the facts of the host");
  MemoryWatch::during([&] { m_instance.collect(); });
  m_platform.collect();
  m_customer->collect();
}

void Generator::visit(Value*) {}

void Generator::visit(PrimitiveValue*) {}

void Generator::visit(ObjectValue* object) {
  // Members change on the way, but none comes or goes.
  for (KeyValuePair* member : object->getValues()) {
    member->accept(*this);
  }
}

void Generator::visit(ArrayValue* array) {
  for (unsigned long i = 0; i < array->size(); ++i) {
    if (Value* element = (*array)[i]) {
      element->accept(*this);
    }
  }
}

void Generator::visit(KeyValuePair* pair) {
  if (const char* const variable = behind(pair->getKey().c_str(), "$foreach")) {
    const std::string_view word = firstWord(variable);
    if (const char* const rest = word.data() + word.size(); *rest == ' ') {
      expand(pair, word, withoutBrackets(firstWord(rest + strspn(rest, " "))));
      return;
    }
  }
  // Most members say something themselves: no node is made of these texts.
  if (const char* const text = pair->plainText()) {
    evaluate(pair, text);
    return;
  }
  Value* const value = pair->getValue();
  if (const auto* primitive = dynamic_cast<PrimitiveValue*>(value)) {
    evaluate(pair, primitive->text().c_str());
  } else if (value != nullptr) {
    value->accept(*this);
  }
}

struct Generator::Variable {
  const char* word;
  bool needsDatabase;
  Value* (Generator::*copy)(const KeyValuePair* pair);
};

const Generator::Variable Generator::s_variables[] = {
    {"db", true, &Generator::runForDatabase},
    {"table", false, &Generator::cloneAndRun},
};

ItemWords Generator::foreachVariables() {
  return wordsOf(s_variables);
}

/// Keys are the tree itself: where there is no memory for one, nothing is evaluated in vain, and the loss
/// stays untold for who would use the tree.
void Generator::expand(KeyValuePair* pair, std::string_view variable, std::string_view outputKey) {
  mirel_string key(outputKey.data(), outputKey.size());
  if (key.lost()) {
    return;
  }
  const MemoryWatch memory;
  MemoryWatch::during([&] {
    auto copies = std::make_unique<ArrayValue>();
    for (const Variable& row : s_variables) {
      if (variable == row.word && (m_databaseName.length() > 0 || !row.needsDatabase)) {
        copies->push_back((this->*row.copy)(pair));
      }
    }
    pair->setValue(copies.release());
  });
  if (memory.ranOut()) {
    pair->setEmpty();
    memory.tell();
  }
  pair->setKey(std::move(key));
}

/// The directory entry lives as long as the evaluation that asks about it. Of a database that has lost its
/// name, or the way to its configuration, nothing is asked.
Value* Generator::runForDatabase(const KeyValuePair* pair) {
  const MemoryWatch memory;
  katoDbDirInfoV9 entry = {};
  m_databaseName.upper().copy_to(entry.alias, sizeof entry.alias);
  const unsigned long behindTerminator = m_databaseName.length() + 1;
  if (behindTerminator < sizeof entry.alias) {
    entry.alias[behindTerminator] = ' ';
  }
  m_instance.setDb(&entry);
  return memory.ranOut() ? nullptr : cloneAndRun(pair);
}

Value* Generator::cloneAndRun(const KeyValuePair* pair) {
  const Value* value = pair->getValue();
  std::unique_ptr<Value> copy(value == nullptr ? nullptr : value->clone());
  if (copy) {
    copy->accept(*this);
  }
  return copy.release();
}
