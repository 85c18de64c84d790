#include "tarn/commands/tarn_commands_line.h"

#include <CLI/CLI.hpp>

namespace tarn {

namespace {

constexpr std::size_t kListed = 10;

}  // namespace

Option& Option::required() {
  m_option->required();
  return *this;
}

Option& Option::type(const char* name) {
  m_option->type_name(name);
  return *this;
}

Option& Option::environment(const char* name) {
  m_option->envname(name);
  return *this;
}

Option& Option::oneOf(const std::set<std::string>& words) {
  CLI::Validator known = CLI::IsMember(words);
  m_option->check(words.size() > kListed ? known.description("") : known);
  return *this;
}

Option& Option::notNegative() {
  m_option->check(CLI::NonNegativeNumber);
  return *this;
}

Option& Option::excludes(const Option& other) {
  m_option->excludes(other.m_option);
  return *this;
}

Option CommandLine::argument(const char* name, std::string& value, const char* sentence) {
  return Option(m_parser.add_option(name, value, sentence));
}

Option CommandLine::argument(const char* name, std::vector<std::string>& values, const char* sentence) {
  return Option(m_parser.add_option(name, values, sentence));
}

Option CommandLine::option(const char* names, std::string& value, const char* sentence) {
  return Option(m_parser.add_option(names, value, sentence));
}

Option CommandLine::option(const char* names, std::vector<std::string>& values, const char* sentence) {
  return Option(m_parser.add_option(names, values, sentence)->allow_extra_args(false));
}

Option CommandLine::option(const char* names, std::optional<double>& value, const char* sentence) {
  return Option(m_parser.add_option(names, value, sentence));
}

Option CommandLine::flag(const char* names, bool& isGiven, const char* sentence) {
  return Option(m_parser.add_flag(names, isGiven, sentence));
}

}  // namespace tarn
