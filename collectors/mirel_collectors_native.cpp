#include "collectors/mirel_collectors_native.h"

namespace {

using From = const Collectors&;
using Text = const mirel_string&;

struct Word {
  const char* word;
  mirel_string (*answer)(From from, Text item);
  NativeWord::Rest rest;
  ItemWords (*items)();
};

using enum NativeWord::Rest;

constexpr Word kVocabulary[] = {
    {"version", [](From from, Text item) { return from.instance->version(item); }, item,
     InstanceCollector::versionItems},
    {"instance", [](From from, Text item) { return from.instance->instance(item); }, item,
     InstanceCollector::instanceItems},
    {"readFile", [](From, Text item) { return readFile(item); }, path, nullptr},
    {"db", [](From from, Text item) { return from.instance->database(item); }, item,
     InstanceCollector::databaseItems},
    {"table", [](From from, Text item) { return from.instance->table(item); }, item,
     InstanceCollector::tableItems},
    {"os", [](From from, Text item) { return from.platform->collect_os(item); }, item,
     PlatformCollector::osItems},
    {"cpu", [](From from, Text item) { return from.platform->collect_cpu(item); }, item,
     PlatformCollector::cpuItems},
    {"pmemory", [](From from, Text item) { return from.platform->collect_pmemory(item); }, item,
     PlatformCollector::pmemoryItems},
    {"vmemory", [](From from, Text item) { return from.platform->collect_vmemory(item); }, item,
     PlatformCollector::vmemoryItems},
    {"disk", [](From from, Text item) { return from.platform->collect_disk(item); }, item,
     PlatformCollector::diskItems},
    {"swap", [](From from, Text item) { return from.platform->collect_swap(item); }, item,
     PlatformCollector::swapItems},
    {"network", [](From from, Text item) { return from.platform->collect_network(item); }, anything, nullptr},
    {"customer", [](From from, Text item) { return from.customer->collect_customer(item); }, item,
     CustomerCollector::customerItems},
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

std::vector<NativeWord> nativeWords() {
  std::vector<NativeWord> words;
  for (const Word& row : kVocabulary) {
    words.push_back({row.word, row.rest, row.items == nullptr ? ItemWords() : row.items()});
  }
  return words;
}
