// A template's way through the program: parse, walk, write.

#include <cstring>
#include <iostream>
#include <memory>

#include "fuzz/mirel_fuzz.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_writer.h"

extern "C" [[noreturn]] void __real_exit(int status);

namespace {

/// A run of backslashes grows with its square when its escapes are undone.
constexpr std::size_t kLongest = 2048;

bool s_parsing = false;

/// A syntax error ends the process. Here it only ends the parse: it is thrown in place of std::exit, and what
/// the parser holds is released on the way.
struct SyntaxError {};

/// Null for a text that is no template.
std::unique_ptr<Value> parse(const mirel_string& text) {
  std::unique_ptr<Value> root;
  s_parsing = true;
  try {
    root.reset(JsonParser().parse(text));
  } catch (const SyntaxError&) {
  }
  s_parsing = false;
  return root;
}

/// Whether a text comes back from its escapes: no backslash stands before what would make another escape of
/// it, or at the end.
bool comesBack(const mirel_string& text) {
  const char* backslash = strchr(text.c_str(), '\\');
  while (backslash != nullptr && strchr("nNrR\\\"\n\r", backslash[1]) == nullptr) {
    backslash = strchr(backslash + 1, '\\');
  }
  return backslash == nullptr;
}

/// The same for a whole tree: no empty containers either. Unfolds objects.
bool comesBack(const Value* value) {
  if (const auto* array = dynamic_cast<const ArrayValue*>(value)) {
    bool whole = array->size() > 0;
    for (unsigned long i = 0; i < array->size(); ++i) {
      whole = comesBack((*array)[i]) && whole;
    }
    return whole;
  }
  if (const auto* object = dynamic_cast<const ObjectValue*>(value)) {
    bool whole = !object->getValues().empty();
    for (const KeyValuePair* member : object->getValues()) {
      whole = comesBack(member->getValue()) && comesBack(member->getKey()) && whole;
    }
    return whole;
  }
  const auto* primitive = dynamic_cast<const PrimitiveValue*>(value);
  return primitive == nullptr || comesBack(primitive->text());
}

void checkWriting(const Value* root) {
  const mirel_string text = root->stringify(0);
  require(std::unique_ptr<Value>(root->clone())->stringify(0) == text, "a clone prints the same");
  const bool whole = comesBack(root);
  require(root->stringify(0) == text, "folded members print the same as nodes");
  if (whole) {
    const std::unique_ptr<Value> again = parse(text);
    require(again && again->stringify(0) == text, "what was written reads back");
  }
}

/// The text with single blanks for runs of them, and none in front.
std::string squeezed(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character != ' ' || (!result.empty() && result.back() != ' ')) {
      result += character;
    }
  }
  return result;
}

void checkWords(const mirel_string& text) {
  for (const unsigned long limit : {0UL, 1UL, 2UL, mirel_string::npos}) {
    const std::vector<mirel_string> words = Generator::split_args(text, limit);
    std::string joined;
    for (std::size_t i = 0; i < words.size(); ++i) {
      const std::string word = words[i].c_str();
      const bool last = i + 1 == words.size();
      require(word.find(' ') == (last && i == limit ? word.find(' ', 1) : word.npos), "where blanks are");
      require(last || !word.empty(), "only the rest may be empty");
      joined += (i > 0 ? " " : "") + word;
    }
    require(words.size() - 1 <= limit, "no more cuts than allowed");
    require(std::string(text.c_str()).ends_with(words.back().c_str()), "the rest stays as it was");
    require(squeezed(joined) == squeezed(text.c_str()), "the words make up the text");
  }
}

void checkEscapes(const mirel_string& text) {
  require(text.replace_all("\\", "\\\\")
                  .replace_all("\n", "\\n")
                  .replace_all("\r", "\\r")
                  .replace_all("\"", "\\\"") == escapeJson(text),
          "one pass escapes like one pass for each character");
  require(!comesBack(text) || reverseEscape(escapeJson(text)) == text, "escapes are undone");
}

}  // namespace

extern "C" void __wrap_exit(int status) {
  if (!s_parsing) {
    __real_exit(status);
  }
  require(status == -1, "the status of a syntax error");
  throw SyntaxError();
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  std::cout.setstate(std::ios::failbit);
  std::cerr.setstate(std::ios::failbit);
  return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > kLongest) {
    return 0;
  }
  const mirel_string text(reinterpret_cast<const char*>(data), size);
  checkWords(text);
  checkEscapes(text);
  const std::unique_ptr<Value> root = parse(text);
  if (root) {
    checkWriting(root.get());
    CustomerCollector customer;
    Generator generator;
    // What follows the document is not read, so the last byte is free to choose.
    generator.set(data[size - 1] % 2 == 0 ? "FUZZ" : "", &customer);
    root->accept(generator);
    checkWriting(root.get());
  }
  return 0;
}
