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

/// The setting that an option's argument goes into as it is; null for the other options.
mirel_string* textSetting(RunSettings* settings, int letter) {
  switch (letter) {
    case 'd':
      return &settings->database;
    case 'o':
      return &settings->outfile;
    case 'h':
      return &settings->host;
    case 'e':
      return &settings->email;
    case 'n':
      return &settings->name;
    case 'c':
      return &settings->company;
    case 'i':
      return &settings->icn;
    case 'r':
      return &settings->country;
    case 't':
      return &settings->telephone;
    case 'a':
      return &settings->address;
    default:
      return nullptr;
  }
}

void apply(int letter, const char* argument, RunSettings* settings) {
  if (mirel_string* text = textSetting(settings, letter)) {
    *text = argument;
  } else if (letter == 'p') {
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
