#include <getopt.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/services.h"

namespace {

/// Lends the process-wide state of getopt(3) to one call and leaves it as it was found. What getopt keeps
/// hidden is reset at both ends (an `optind` of 0 makes it start anew), so nothing of ours stays behind.
class GetoptLoan {
 public:
  GetoptLoan() {
    optind = 0;
    opterr = 0;
  }
  ~GetoptLoan() {
    char name[] = "";
    char* nothing[] = {name, nullptr};
    optind = 0;
    std::ignore = getopt(1, nothing, "");
    std::tie(optind, opterr, optopt, optarg) = m_before;
  }
  GetoptLoan(const GetoptLoan&) = delete;
  GetoptLoan& operator=(const GetoptLoan&) = delete;

 private:
  std::tuple<int, int, int, char*> m_before{optind, opterr, optopt, optarg};
};

struct Parsed {
  int letter;
  const char* argument;
  bool tookNext;
};

/// Has getopt read one option; `next` is what may serve as its argument, null when there is nothing.
Parsed parseOne(char* option, char* next, const char* shortOptions, const SqloLongOption* longOptions) {
  std::vector<struct option> table;
  for (const SqloLongOption* row = longOptions; row != nullptr && row->name != nullptr; ++row) {
    table.push_back({row->name, row->takesArgument ? required_argument : no_argument, nullptr, row->letter});
  }
  table.push_back({nullptr, 0, nullptr, 0});

  const GetoptLoan loan;
  char name[] = "";
  char* arguments[] = {name, option, next, nullptr};
  const int letter = getopt_long(next != nullptr ? 3 : 2, arguments, shortOptions, table.data(), nullptr);
  return {letter == ':' ? '?' : letter, optarg, optarg != nullptr && optarg == next};
}

int answer(SqloOptionState* state, const Parsed& parsed, std::string_view typed) {
  state->argument = parsed.argument;
  if (parsed.letter == '?') {
    state->typed[typed.copy(state->typed, sizeof state->typed - 1)] = '\0';
    state->argument = state->typed;
  }
  return parsed.letter;
}

/// Bytes of the character at the start of `text`, so that one that is no option is handed back whole (UTF-8).
std::size_t characterLength(const char* text) {
  std::size_t length = 1;
  if ((text[0] & 0xC0) == 0xC0) {
    while (length < 4 && (text[length] & 0xC0) == 0x80) {
      ++length;
    }
  }
  return length;
}

/// The next letter of a group such as "-zdNAME". It is read as an option of its own, "-d", with the rest of
/// the group ("NAME") or else the next element as its possible argument, which keeps long groups linear.
int nextOfGroup(SqloOptionState* state, char* element, char* next, const char* shortOptions) {
  char* letter = element + std::max(state->cluster, 1);
  const std::size_t length = characterLength(letter);
  char option[6] = "-";
  std::memcpy(option + 1, letter, length);
  char* rest = letter + length;

  Parsed parsed = {'?', nullptr, false};
  if (*letter != '-') {  // "--" would end the options here, but inside a group it is just no option
    parsed = parseOne(option, *rest != '\0' ? rest : next, shortOptions, nullptr);
  }
  if (*rest != '\0' && !parsed.tookNext) {
    state->cluster = static_cast<int>(rest - element);
  } else {
    state->index += *rest == '\0' && parsed.tookNext ? 2 : 1;
    state->cluster = 0;
  }
  return answer(state, parsed, option);
}

int nextLong(SqloOptionState* state, char* element, char* next, const char* shortOptions,
             const SqloLongOption* longOptions) {
  const Parsed parsed = parseOne(element, next, shortOptions, longOptions);
  state->index += parsed.tookNext ? 2 : 1;
  return answer(state, parsed, element);
}

bool isOperand(const char* element) {
  return element[0] != '-' || element[1] == '\0';
}

}  // namespace

int sqlogopt(int count, char* const* arguments, const char* shortOptions, SqloOptionState* state,
             const SqloLongOption* longOptions) {
  int& index = state->index;
  index = std::max(index, 1);
  while (index < count && arguments[index] != nullptr && isOperand(arguments[index])) {
    ++index;
  }
  if (index >= count || arguments[index] == nullptr || std::strcmp(arguments[index], "--") == 0) {
    index = std::max(count, 1);
    state->argument = nullptr;
    return -1;
  }

  char* element = arguments[index];
  char* next = index + 1 < count ? arguments[index + 1] : nullptr;
  return element[1] == '-' ? nextLong(state, element, next, shortOptions, longOptions)
                           : nextOfGroup(state, element, next, shortOptions);
}
