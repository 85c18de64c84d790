#pragma once
/// A subcommand: one row, from which parsing, help, manual page and completion come.
///
///     Command strictCommand() {
///       return {.name = "strict",
///               .sentence = "Write documents as JSON that every reader takes",
///               .text = "...", .examples = {...},
///               .bind = bindTo<StrictOptions>(declareOptions, strict)};
///     }
///
/// `declareOptions(CommandLine&, StrictOptions&)` names the options and where they go; `strict(const
/// StrictOptions&, Console&)` does the work. It neither exits nor prints its own errors: what it could not do
/// it tells the console (`Console::trouble`), which remembers it for the exit status.

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarn {

class CommandLine;
class Console;

/// What a command came to, in the order of weight. Trouble is the console's.
enum class Outcome { nothing, something };

/// A line for a shell, and what it prints (both streams). A test runs it in a folder of sample documents; the
/// manual shows it.
struct Example {
  std::string line;
  std::string prints;
};

/// A word that a command knows, and what it means: a rule, a kind, a member of its `--json`.
struct Entry {
  std::string word;
  std::string sentence;
};

struct List {
  std::string title;  ///< the manual's heading
  std::string type;   ///< type name of the options that take such a word, for completion; may be empty
  std::vector<Entry> entries;
};

struct Command {
  std::string name;      ///< "strict", or "fleet load" for a command below another
  std::string sentence;  ///< what it does, for the list of commands; no full stop
  std::string text;  ///< the manual's paragraphs, parted by blank lines; a line that begins with a blank is
                     ///< shown as it is
  std::vector<Example> examples;
  std::vector<List> lists = {};
  /// Declares the options on the parser and hands back what to run once they are read.
  std::function<std::function<Outcome(Console&)>(CommandLine&)> bind;
};

template <class Options>
auto bindTo(void (*declare)(CommandLine&, Options&), Outcome (*run)(const Options&, Console&)) {
  return [declare, run](CommandLine& line) -> std::function<Outcome(Console&)> {
    const auto options = std::make_shared<Options>();
    declare(line, *options);
    return [options, run](Console& console) { return run(*options, console); };
  };
}

/// All commands, in the order of the manual.
const std::vector<Command>& commands();

}  // namespace tarn
