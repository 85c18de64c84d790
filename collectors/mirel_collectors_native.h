#pragma once
/// The vocabulary of the `native` command: collector words and what answers them.

#include "collectors/mirel_collectors_customer.h"
#include "collectors/mirel_collectors_instance.h"
#include "collectors/mirel_collectors_platform.h"

/// The collectors of a run; none is owned.
struct Collectors {
  const InstanceCollector* instance;
  const PlatformCollector* platform;
  const CustomerCollector* customer;
};

/// Puts the fact that `word` and `item` name into `*answer`. False, and `*answer` untouched, when there is
/// no such collector word.
bool nativeFact(const Collectors& collectors, const mirel_string& word, const mirel_string& item,
                mirel_string* answer);

/// A collector word and what may follow it, for whoever checks templates.
struct NativeWord {
  enum class Rest { item, path, anything };

  const char* word;
  Rest rest;
  ItemWords items;
};

/// All collector words.
std::vector<NativeWord> nativeWords();
