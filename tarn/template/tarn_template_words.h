#pragma once
/// The words of command strings and `$foreach` keys: where they stand, and which are known.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "collectors/mirel_collectors_native.h"
#include "tarn/template/tarn_template_source.h"

namespace tarn {

struct Word {
  std::string text;        ///< escapes undone
  std::string_view raw;    ///< empty where there is no such word
  std::size_t offset = 0;  ///< in the source
};

/// The first four words of a string, cut at blanks as the collector cuts.
struct Words {
  explicit Words(const Raw& string);

  const Word& operator[](std::size_t index) const { return words[index]; }

  std::array<Word, 4> words;
  std::size_t count = 0;      ///< at most 4
  bool blankBehind = false;   ///< behind the last word, which makes an empty word more
  std::string_view fromLast;  ///< raw text from the fourth word on
};

/// The position of a tab, line feed or carriage return, raw or escaped; npos when there is none.
std::size_t separatorIn(std::string_view raw);

/// A to Z in lower case.
std::string lowered(std::string_view text);

/// How many letters have to be changed, added, taken out or exchanged with the next one to make `one` of
/// `other`, in any letter case. Words of more than 32 letters are farther than any.
std::size_t distance(std::string_view one, std::string_view other);

/// Lists of the core's words.
using Known = std::vector<const char*>;
const Known& commandWords();
const Known& sqlKinds();
const Known& foreachVariables();
const std::vector<NativeWord>& collectors();
const Known& collectorWords();
/// Null when there is no such collector word.
const NativeWord* collectorOf(std::string_view word);

bool isKnown(const Known& known, std::string_view word);
/// What to write instead of an unknown word: the nearest known one when it is near, else all of them.
std::string instead(const Known& known, std::string_view word);

}  // namespace tarn
