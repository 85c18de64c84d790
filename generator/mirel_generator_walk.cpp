#include "generator/mirel_generator_walk.h"

#include <memory>
#include <utility>

#include "common/mirel_common_console.h"
#include "common/mirel_common_memory.h"

namespace {

/// The key that the third word of a "$foreach" key names: the brackets, or whatever stands there, go.
mirel_string withoutBrackets(const mirel_string& word) {
  return word.length() < 2 ? "" : word.substr(1, word.length() - 2);
}

}  // namespace

void Generator::set(mirel_string database, CustomerCollector* customer) {
  if (database.length() > 1) {
    showWork("connecting");
    if (sqlSucceeded(m_connection.connect(database))) {
      m_databaseName = std::move(database);
    }
  }
  m_customer = customer;
  showWork("taking the facts of the host");
  m_instance.collect();
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
  if (behind(pair->getKey().c_str(), "$foreach") != nullptr) {
    const std::vector<mirel_string> words = split_args(pair->getKey(), mirel_string::npos);
    if (words.size() >= 3) {
      expand(pair, words[1], withoutBrackets(words[2]));
      return;
    }
  }
  // Most members say something themselves: no node is made of these texts.
  const char* const text = pair->plainText();
  if (text != nullptr && !isCommand(text)) {
    return;
  }
  Value* value = pair->getValue();
  if (auto* primitive = dynamic_cast<PrimitiveValue*>(value)) {
    showWork(pair->getKey().c_str());
    parseAndExecute(primitive, pair);
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

void Generator::expand(KeyValuePair* pair, const mirel_string& variable, mirel_string outputKey) {
  auto copies = std::make_unique<ArrayValue>();
  for (const Variable& row : s_variables) {
    if (!variable.lost() && variable == row.word && (m_databaseName.length() > 0 || !row.needsDatabase)) {
      copies->push_back((this->*row.copy)(pair));
    }
  }
  pair->setKey(std::move(outputKey));
  pair->setValue(copies.release());
}

/// The directory entry lives as long as the evaluation that asks about it. Of a database that has lost its
/// name nothing is asked.
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
