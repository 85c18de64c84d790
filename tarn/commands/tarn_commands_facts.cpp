#include "tarn/commands/tarn_commands_facts.h"

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_line.h"
#include "tarn/commands/tarn_commands_reading.h"

namespace tarn {

namespace {

bool addFile(Console& console, const std::string& file, Facts& facts) {
  const std::optional<std::string> text = readText(console, file);
  if (!text) {
    return false;
  }
  const std::optional<FactsProblem> problem = facts.add(*text);
  if (problem) {
    console.trouble(file, {.line = problem->line}, shown(problem->text));
  }
  return !problem;
}

}  // namespace

void declareFacts(CommandLine& line, std::vector<std::string>& files) {
  line.option("--facts", files, "What members of one's own mean, in addition; may be given again")
      .type("FILE");
}

std::optional<Facts> loadFacts(const std::vector<std::string>& files, Console& console) {
  std::optional<Facts> facts = Facts::builtIn();
  for (const std::string& file : files) {
    if (!addFile(console, file, *facts)) {
      facts.reset();
      break;
    }
  }
  return facts;
}

}  // namespace tarn
