#include "collectors/mirel_collectors_native.h"

namespace {

struct Word {
  const char* word;
  mirel_string (*answer)(const Collectors& from, const mirel_string& item);
};

using Item = const mirel_string&;

constexpr Word kVocabulary[] = {
    {"version", [](const Collectors& from, Item item) { return from.instance->version(item); }},
    {"instance", [](const Collectors& from, Item item) { return from.instance->instance(item); }},
    {"readFile", [](const Collectors&, Item item) { return readFile(item); }},
    {"db", [](const Collectors& from, Item item) { return from.instance->database(item); }},
    {"table", [](const Collectors& from, Item item) { return from.instance->table(item); }},
    {"os", [](const Collectors& from, Item item) { return from.platform->collect_os(item); }},
    {"cpu", [](const Collectors& from, Item item) { return from.platform->collect_cpu(item); }},
    {"pmemory", [](const Collectors& from, Item item) { return from.platform->collect_pmemory(item); }},
    {"vmemory", [](const Collectors& from, Item item) { return from.platform->collect_vmemory(item); }},
    {"disk", [](const Collectors& from, Item item) { return from.platform->collect_disk(item); }},
    {"swap", [](const Collectors& from, Item item) { return from.platform->collect_swap(item); }},
    {"network", [](const Collectors& from, Item item) { return from.platform->collect_network(item); }},
    {"customer", [](const Collectors& from, Item item) { return from.customer->collect_customer(item); }},
};

}  // namespace

bool nativeFact(const Collectors& collectors, const mirel_string& word, const mirel_string& item,
                mirel_string* answer) {
  for (const Word& row : kVocabulary) {
    if (!(word == row.word)) {
      continue;
    }
    *answer = row.answer(collectors, item);
    return true;
  }
  return false;
}
