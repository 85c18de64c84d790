#include <algorithm>
#include <cstring>
#include <utility>

#include "collectors/mirel_collectors_native.h"
#include "collectors/mirel_collectors_system.h"
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

struct Command {
  const char* word;
  void (*run)(Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair* pair);
  /// What it leaves where memory runs out.
  void (*lose)(PrimitiveValue* primitive, KeyValuePair* pair);
};

void leaveEmpty(PrimitiveValue* primitive, KeyValuePair*) {
  primitive->setText("");
}

void leaveNothing(PrimitiveValue*, KeyValuePair* pair) {
  pair->setValue(nullptr);
}

constexpr Command kCommands[] = {
    {"native",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair*) {
       generator.native(rest, primitive);
     },
     leaveEmpty},
    {"execute",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue* primitive, KeyValuePair*) {
       generator.execute(rest, primitive);
     },
     leaveEmpty},
    {"sql",
     [](Generator& generator, const mirel_string& rest, PrimitiveValue*, KeyValuePair* pair) {
       pair->setValue(generator.sql(rest));
     },
     leaveNothing},
};

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

bool Generator::isCommand(const char* text) {
  return std::any_of(std::begin(kCommands), std::end(kCommands),
                     [text](const Command& command) { return behind(text, command.word) != nullptr; });
}

void Generator::parseAndExecute(PrimitiveValue* primitive, KeyValuePair* pair) {
  for (const Command& command : kCommands) {
    if (const char* rest = behind(primitive->text().c_str(), command.word)) {
      const MemoryWatch memory;
      MemoryWatch::during([&] { command.run(*this, rest, primitive, pair); });
      if (memory.ranOut()) {
        command.lose(primitive, pair);
        memory.tell();
      }
      return;
    }
  }
}

ItemWords Generator::commandWords() {
  return wordsOf(kCommands);
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
