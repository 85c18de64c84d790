#pragma once
/// One call of tarn within the test: words and standard input in; both outputs and the status out.

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_program.h"

struct Session {
  /// Standard input is a pipe where the text fits into one, so that it cannot be read twice.
  Session(std::vector<std::string> words, const std::string& input) {
    int ends[2];
    constexpr std::size_t kPipe = 64 << 10;
    const bool piped = input.size() < kPipe && pipe(ends) == 0;
    const int in = piped ? ends[0] : memfd_create("in", 0), out = memfd_create("out", 0),
              err = memfd_create("err", 0);
    if (write(piped ? ends[1] : in, input.data(), input.size()) < 0 ||
        (piped ? close(ends[1]) : lseek(in, 0, SEEK_SET)) != 0)
      return;
    words.insert(words.begin(), "tarn");
    std::vector<char*> arguments;
    for (std::string& word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    tarn::Console console(in, out, err);
    status = tarn::runProgram(static_cast<int>(words.size()), arguments.data(), console);
    output = contents(out);
    errors = contents(err);
    close(in);
  }

  std::string output, errors;
  int status = -1;

 private:
  static std::string contents(int file) {
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    text.resize(static_cast<std::size_t>(pread(file, text.data(), text.size(), 0)));
    close(file);
    return text;
  }
};
