#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "collectors/mirel_collectors_native.h"
#include "collectors/mirel_collectors_system.h"
#include "common/mirel_common_console.h"
#include "common/mirel_common_memory.h"
#include "generator/mirel_generator_walk.h"

namespace {

unsigned long runsOfBlanks(const mirel_string& text) {
  unsigned long runs = 0;
  const char* const characters = text.c_str();
  for (unsigned long i = 1; i < text.length(); ++i) {
    runs += characters[i] == ' ' && characters[i - 1] != ' ' ? 1 : 0;
  }
  return runs;
}

/// What "sql" is followed by, and who answers the rest.
struct SqlKind {
  const char* word;
  Value* (*answer)(DBConnection& connection, const mirel_string& rest);
};

Value* valueOf(DBConnection& connection, const mirel_string& rest) {
  const std::vector<mirel_string> columnAndQuery = Generator::split_args(rest, 1);
  return columnAndQuery.size() != 2 ? nullptr : connection.queryValue(columnAndQuery[1], columnAndQuery[0]);
}

constexpr SqlKind kSqlKinds[] = {
    {"array",
     [](DBConnection& connection, const mirel_string& query) -> Value* { return connection.query(query); }},
    {"value", valueOf},
    {"one",
     [](DBConnection& connection, const mirel_string& query) -> Value* {
       return connection.queryOne(query);
     }},
};

}  // namespace

std::vector<mirel_string> Generator::split_args(const mirel_string& text, unsigned long limit) {
  const char* rest = text.c_str();
  std::vector<mirel_string> words;
  words.reserve(std::min(limit, runsOfBlanks(text)) + 1);
  rest += strspn(rest, " ");
  for (unsigned long cuts = 0; cuts < limit; ++cuts) {
    const char* blank = strchr(rest, ' ');
    if (blank == nullptr) {
      break;
    }
    words.emplace_back(rest, static_cast<unsigned long>(blank - rest));
    rest = blank + strspn(blank, " ");
  }
  words.emplace_back(rest);
  return words;
}

const char* Generator::behind(const char* text, const char* word) {
  const char* const first = *text == ' ' ? text + strspn(text, " ") : text;
  const unsigned long length = strlen(word);
  const bool isFirst = *first == *word && strncmp(first, word, length) == 0 && first[length] == ' ';
  return isFirst ? first + length + strspn(first + length, " ") : nullptr;
}

struct Generator::Command {
  const char* word;
  void (*run)(Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair* pair);
  /// What it leaves where memory runs out.
  void (*lose)(KeyValuePair* pair);
};

const Generator::Command Generator::s_commands[] = {
    {"native",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair*) {
       generator.native(rest, primitive);
     },
     [](KeyValuePair* pair) { pair->setEmpty(); }},
    {"execute",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair*) {
       generator.execute(rest, primitive);
     },
     [](KeyValuePair* pair) { pair->setEmpty(); }},
    {"sql",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue*, KeyValuePair* pair) {
       pair->setValue(generator.sql(rest));
     },
     [](KeyValuePair* pair) { pair->setValue(nullptr); }},
};

const Generator::Command* Generator::commandOf(const char* text) {
  const auto* const found =
      std::find_if(std::begin(s_commands), std::end(s_commands),
                   [text](const Command& command) { return behind(text, command.word) != nullptr; });
  return found == std::end(s_commands) ? nullptr : found;
}

void Generator::evaluate(KeyValuePair* pair, const char* text) {
  const Command* const command = commandOf(text);
  if (command == nullptr) {
    return;
  }
  showWork(pair->getKey().c_str());
  const MemoryWatch memory;
  MemoryWatch::during([&] { parseAndExecute(static_cast<PrimitiveValue*>(pair->getValue()), pair); });
  if (memory.ranOut()) {
    command->lose(pair);
    memory.tell();
  }
}

void Generator::parseAndExecute(PrimitiveValue* primitive, KeyValuePair* pair) {
  const char* const text = primitive->text().c_str();
  if (const Command* const command = commandOf(text)) {
    command->run(*this, behind(text, command->word), primitive, pair);
  }
}

ItemWords Generator::commandWords() {
  return wordsOf(s_commands);
}

void Generator::native(const mirel_string& rest, PrimitiveValue* primitive) {
  const MemoryWatch memory;
  const std::vector<mirel_string> words = split_args(rest, 1);
  // One word only is the item; what follows it is ignored.
  const mirel_string item = words.size() == 2 ? split_args(words[1], 1)[0] : "";
  mirel_string fact = "";
  if (!memory.ranOut() && nativeFact({&m_instance, &m_platform, m_customer}, words[0], item, &fact)) {
    primitive->setText(std::move(fact));
  }
}

void Generator::execute(const mirel_string& command, PrimitiveValue* primitive) {
  primitive->setText(executeGet(command));
}

Value* Generator::sql(const mirel_string& rest) {
  const MemoryWatch memory;
  const std::vector<mirel_string> words = split_args(rest, 1);
  if (words.size() != 2 || memory.ranOut()) {
    return nullptr;
  }
  for (const SqlKind& kind : kSqlKinds) {
    if (words[0] == kind.word) {
      return kind.answer(m_connection, words[1]);
    }
  }
  return nullptr;
}

ItemWords Generator::sqlKinds() {
  return wordsOf(kSqlKinds);
}
