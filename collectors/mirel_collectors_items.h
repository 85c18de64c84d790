#pragma once
/// Tables of items: the words that a collector answers, and how.

#include <vector>

#include "common/mirel_string.h"

/// One item: its word and how its answer is read out of what holds the facts.
template <class From>
struct Item {
  const char* word;
  mirel_string (*answer)(const From& from);
};

/// The answer to `item`, or `otherwise` when the table has none.
template <class From, unsigned long count>
mirel_string answerOf(const Item<From> (&items)[count], const From& from, const mirel_string& item,
                      const char* otherwise) {
  for (const Item<From>& row : items) {
    if (item == row.word) {
      return row.answer(from);
    }
  }
  return otherwise;
}

/// The words of a table, for whoever checks templates.
using ItemWords = std::vector<const char*>;

template <class Row, unsigned long count>
ItemWords wordsOf(const Row (&rows)[count]) {
  ItemWords words;
  for (const Row& row : rows) {
    words.push_back(row.word);
  }
  return words;
}
