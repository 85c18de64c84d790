#include "tarn/commands/tarn_commands_command.h"
#include "tarn/manual/tarn_manual_slots.h"

namespace tarn {

std::string scriptOfExamples() {
  std::string script = "exec 2>&1\ntarn --help >help\n";
  for (const Command& command : commands()) {
    script += "tarn " + command.name + " --help >help || echo 'No help: " + command.name + "'\n";
    for (const Example& example : command.examples) {
      script += "cat <<'END'\n$ " + example.line + "\nEND\n" + example.line + "\n";
    }
  }
  return script;
}

std::string outputOfExamples() {
  std::string output;
  for (const Command& command : commands()) {
    for (const Example& example : command.examples) {
      output += "$ " + example.line + "\n" + example.prints;
      output += example.prints.empty() || example.prints.back() == '\n' ? "" : "\n";
    }
  }
  return output;
}

}  // namespace tarn
