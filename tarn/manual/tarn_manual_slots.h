#pragma once
/// What the build writes from the rows of commands and facts: each function fills one slot of a frame (see
/// tarn_manual_main.cpp).

#include <string>

namespace tarn {

/// The manual's section on each command, in mdoc(7): use, text, options, lists, examples.
std::string manualOfCommands();

/// For bash: a function that prints the words that can follow a command, and one for the values of options.
std::string completionOfCommands();

/// What every fact means, in Markdown.
std::string pageOfFacts();

/// A script that runs every example and asks every command for its help, and what it has to print.
std::string scriptOfExamples();
std::string outputOfExamples();

}  // namespace tarn
