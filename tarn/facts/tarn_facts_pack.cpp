/// Run by the build: checks the table (standard input) and packs it into a source (standard output).

#include <iostream>
#include <iterator>

#include "tarn/facts/tarn_facts_table.h"

int main() {
  const std::string text(std::istreambuf_iterator<char>(std::cin), {});
  std::vector<tarn::Fact> facts;
  if (const auto problem = tarn::readFacts(text, &facts)) {
    std::cerr << "tarn/facts/facts.txt:" << problem->line << ": " << problem->text << "\n";
    return 1;
  }
  std::cout << "namespace tarn {\n\n"
               "extern const char* const kFactsText;\n"
               "const char* const kFactsText = R\"facts("
            << text << ")facts\";\n\n}  // namespace tarn\n";
  return std::cout.flush() ? 0 : 1;
}
