#include <algorithm>
#include <cstring>

#include "collectors/mirel_collectors_native.h"
#include "collectors/mirel_collectors_system.h"
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

void Generator::parseAndExecute(PrimitiveValue* primitive, KeyValuePair* pair) {
  const std::vector<mirel_string> words = split_args(primitive->text(), 1);
  if (words.size() != 2) {
    return;
  }
  if (words[0] == "native") {
    native(words[1], primitive);
  } else if (words[0] == "execute") {
    execute(words[1], primitive);
  } else if (words[0] == "sql") {
    pair->setValue(sql(words[1]));
  }
}

void Generator::native(const mirel_string& rest, PrimitiveValue* primitive) {
  const std::vector<mirel_string> words = split_args(rest, 1);
  // One word only is the item; what follows it is ignored.
  const mirel_string item = words.size() == 2 ? split_args(words[1], 1)[0] : "";
  mirel_string fact = "";
  if (nativeFact({&m_instance, &m_platform, m_customer}, words[0], item, &fact)) {
    primitive->setText(fact);
  }
}

void Generator::execute(const mirel_string& command, PrimitiveValue* primitive) {
  primitive->setText(executeGet(command));
}

Value* Generator::sql(const mirel_string& rest) {
  const std::vector<mirel_string> words = split_args(rest, 1);
  if (words.size() != 2) {
    return nullptr;
  }
  const mirel_string& kind = words[0];
  if (kind == "array") {
    return m_connection.query(words[1]);
  }
  if (kind == "value") {
    const std::vector<mirel_string> columnAndQuery = split_args(words[1], 1);
    return columnAndQuery.size() != 2 ? nullptr
                                      : m_connection.queryValue(columnAndQuery[1], columnAndQuery[0]);
  }
  if (kind == "one") {
    return m_connection.queryOne(words[1]);
  }
  return nullptr;
}
