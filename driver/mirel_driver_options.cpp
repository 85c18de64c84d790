#include "driver/mirel_driver_options.h"

#include <cstdlib>
#include <iostream>

#include "platform/services.h"

namespace {

constexpr char kShortOptions[] = "d:o:sh:p:ze:n:c:i:r:t:a:";

constexpr SqloLongOption kLongOptions[] = {
    {"database", true, 'd'}, {"outfile", true, 'o'},  {"send", false, 's'},   {"host", true, 'h'},
    {"port", true, 'p'},     {"support", false, 'z'}, {"email", true, 'e'},   {"name", true, 'n'},
    {"company", true, 'c'},  {"icn", true, 'i'},      {"country", true, 'r'}, {"telephone", true, 't'},
    {"address", true, 'a'},  {nullptr, false, 0},
};

/// The options whose argument is a setting as it is.
constexpr struct {
  int letter;
  mirel_string RunSettings::*setting;
} kTextSettings[] = {
    {'d', &RunSettings::database}, {'o', &RunSettings::outfile}, {'h', &RunSettings::host},
    {'e', &RunSettings::email},    {'n', &RunSettings::name},    {'c', &RunSettings::company},
    {'i', &RunSettings::icn},      {'r', &RunSettings::country}, {'t', &RunSettings::telephone},
    {'a', &RunSettings::address},
};

void apply(int letter, const char* argument, RunSettings* settings) {
  for (const auto& option : kTextSettings) {
    if (option.letter == letter) {
      settings->*option.setting = argument;
    }
  }
  if (letter == 'p') {
    settings->port = strtoul(argument, nullptr, 10);
  } else if (letter == 's') {
    settings->send = true;
  } else if (letter == 'z') {
    settings->support = true;
  } else if (letter == '?') {
    std::cout << "unknown argument: " << argument << std::endl;
  }
}

}  // namespace

bool parseOptions(int argc, char** argv, RunSettings* settings) {
  SqloOptionState state = {};
  bool any = false;
  for (;;) {
    const int letter = sqlogopt(argc, argv, kShortOptions, &state, kLongOptions);
    if (letter == -1) {
      return any;
    }
    any = true;
    apply(letter, state.argument == nullptr ? "" : state.argument, settings);
  }
}
