#pragma once
/// What a command takes from the command line. Commands declare it here and not on the parser itself, whose
/// headers cost more to compile than all else of a command.
///
///     void declare(CommandLine& line, ShowOptions& options) {
///       line.argument("FILE", options.file, "Document; - or nothing for standard input").type("");
///       line.flag("--all", options.all, "Cut nothing: whole lines, tables and listings");
///     }
///
/// Where the values go has to outlive the parsing; what stands there is the value when none is given.

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarn {

/// An option or argument that was declared. Each function says more of it.
class Option {
 public:
  explicit Option(CLI::Option* option) : m_option(option) {}

  Option& required();
  /// What its value is, for help, manual and completion; "" tells nothing.
  Option& type(const char* name);
  /// The variable of the environment that serves when the line gives no value.
  Option& environment(const char* name);
  /// Takes no other words. Help lists them unless they are many.
  Option& oneOf(const std::set<std::string>& words);
  Option& notNegative();
  Option& excludes(const Option& other);

 private:
  CLI::Option* m_option;
};

class CommandLine {
 public:
  explicit CommandLine(CLI::App& parser) : m_parser(parser) {}

  /// What stands by itself on the line, in the order of the declarations; as many as there are for a vector.
  Option argument(const char* name, std::string& value, const char* sentence);
  Option argument(const char* name, std::vector<std::string>& values, const char* sentence);

  /// "-o,--output": what has a name, and a value behind it. For a vector it may be given again.
  Option option(const char* names, std::string& value, const char* sentence);
  Option option(const char* names, std::vector<std::string>& values, const char* sentence);
  Option option(const char* names, std::optional<double>& value, const char* sentence);

  Option flag(const char* names, bool& isGiven, const char* sentence);

 private:
  CLI::App& m_parser;
};

}  // namespace tarn
