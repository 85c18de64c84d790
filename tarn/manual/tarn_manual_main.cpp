/// Fills a frame, from standard input to standard output: a line "@SLOT@" gives way to what is written from
/// the rows of commands and facts. The build makes the manual page, the completion and docs/facts.md with it.

#include <iostream>
#include <string>

#include "tarn/manual/tarn_manual_slots.h"

namespace {

struct Slot {
  const char* line;
  std::string (*text)();
};

constexpr Slot kSlots[] = {
    {"@manual@", tarn::manualOfCommands},   {"@completion@", tarn::completionOfCommands},
    {"@facts@", tarn::pageOfFacts},         {"@script@", tarn::scriptOfExamples},
    {"@examples@", tarn::outputOfExamples},
};

std::string filled(const std::string& line) {
  for (const Slot& slot : kSlots) {
    if (line == slot.line) {
      return slot.text();
    }
  }
  return line + "\n";
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    std::cout << filled(line);
  }
  return std::cout.flush() ? 0 : 1;
}
