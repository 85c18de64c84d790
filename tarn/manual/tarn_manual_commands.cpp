#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "tarn/commands/tarn_commands_program.h"
#include "tarn/manual/tarn_manual_parser.h"
#include "tarn/manual/tarn_manual_roff.h"
#include "tarn/manual/tarn_manual_slots.h"

namespace tarn {

namespace {

/// `Ar FILE ...`
std::string argument(const std::string& type, bool several) {
  return "Ar " + roffWord(type) + (several ? " ..." : "");
}

/// `.Op Ar FILE ...`, or without brackets where the argument has to be there.
std::string useOf(const CLI::Option& positional) {
  const std::string word = argument(positional.get_name(true), positional.get_expected_max() > 1);
  return (positional.get_required() ? "." : ".Op ") + word;
}

/// KIND, without the words that it may be: a list tells them.
std::string typeOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.substr(0, type.find(':'));
}

/// `Fl o , Fl -output Ar FILE`
std::string namesOf(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : spellingsOf(option)) {
    names += fmt::format("{}Fl {}", names.empty() ? "" : " , ", roffWord(name.substr(1)));
  }
  const bool several = option.get_expected_max() > 1 && option.get_allow_extra_args();
  return takesValue(option) ? names + " " + argument(typeOf(option), several) : names;
}

void appendUse(const CLI::App& parser, const std::string& name, std::string& out) {
  fmt::format_to(std::back_inserter(out), ".Nm\n.Cm {}\n", roffWord(name));
  if (optionsOf(parser).size() > 1) {
    out += ".Op Ar options\n";
  }
  for (const CLI::Option* const positional : positionalsOf(parser)) {
    out += useOf(*positional) + "\n";
  }
}

void appendItem(const std::string& head, std::string_view sentence, std::string& out) {
  out += ".It " + head + "\n";
  appendSentences(sentence, out);
}

/// Option texts are written without a full stop, as --help shows them.
void appendOptions(const CLI::App& parser, std::string& out) {
  std::string items;
  for (const CLI::Option* const option : optionsOf(parser)) {
    if (option != parser.get_help_ptr()) {
      appendItem(namesOf(*option), option->get_description() + ".", items);
    }
  }
  if (!items.empty()) {
    out += ".Pp\nOptions:\n.Bl -tag -width Ds\n" + items + ".El\n";
  }
}

void appendList(const List& list, std::string& out) {
  out += ".Pp\n";
  appendSentences(list.title + ":", out);
  out += ".Bl -tag -width Ds\n";
  for (const Entry& entry : list.entries) {
    appendItem("Cm " + roffWord(entry.word), entry.sentence, out);
  }
  out += ".El\n";
}

void appendExamples(const Command& command, std::string& out) {
  for (const Example& example : command.examples) {
    appendLiteral("$ " + example.line + "\n" + example.prints, out);
  }
}

}  // namespace

std::string manualOfCommands() {
  Run unused;
  const std::unique_ptr<CLI::App> program = makeParser(&unused);
  std::string out;
  for (const Command& command : commands()) {
    const CLI::App& parser = parserOf(*program, command);
    out += ".Ss " + roffWord(command.name) + "\n";
    appendUse(parser, command.name, out);
    out += ".Pp\n";
    appendSentences(command.sentence + ".", out);
    appendParagraphs(command.text, out);
    appendOptions(parser, out);
    for (const List& list : command.lists) {
      appendList(list, out);
    }
    appendExamples(command, out);
  }
  return out;
}

}  // namespace tarn
