/// Documents as tarn reads them, beside RapidJSON's events in mirel_bench_reference.cpp.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bench/mirel_bench_document.h"
#include "tarn/commands/tarn_commands_console.h"
#include "tarn/commands/tarn_commands_program.h"
#include "tarn/document/tarn_document_strict.h"

namespace {

constexpr std::size_t kBlock = 256 << 10;

bool isWhole(std::string_view text) {
  tarn::StrictCheck check;
  tarn::Reader reader(check);
  for (std::size_t at = 0; at < text.size(); at += kBlock)
    reader.feed(text.substr(at, kBlock));
  return reader.finish().state == tarn::State::whole && check.isStrict();
}

void readDocument(benchmark::State& state, std::string (*document)(long)) {
  const std::string text = document(state.range(0));
  for (auto round : state)
    benchmark::DoNotOptimize(isWhole(text));
}

/// The command, from a file in memory to another.
void strict(benchmark::State& state, std::string (*document)(long)) {
  const std::string text = document(state.range(0));
  const int input = memfd_create("in", 0);
  const int output = memfd_create("out", 0);
  if (write(input, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    state.SkipWithError("no room");
  }
  for (auto round : state) {
    lseek(input, 0, SEEK_SET);
    lseek(output, 0, SEEK_SET);
    tarn::Console console(input, output, STDERR_FILENO);
    char program[] = "tarn";
    char command[] = "strict";
    char* arguments[] = {program, command, nullptr};
    if (tarn::runProgram(2, arguments, console) != 0) {
      state.SkipWithError("not strict");
    }
  }
  close(input);
  close(output);
}

/// The second argument in bytes, in documents of the first.
void readRows(benchmark::State& state) {
  std::vector<std::string> documents;
  for (long bytes = 0; bytes < state.range(1); bytes += state.range(0))
    documents.push_back(document(state.range(0)));
  for (auto round : state)
    benchmark::DoNotOptimize(std::all_of(documents.begin(), documents.end(), isWhole));
}

}  // namespace

BENCHMARK_CAPTURE(readDocument, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(readDocument, sample, sampleDocument)->Arg(100'000'000);
BENCHMARK_CAPTURE(strict, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(strict, sample, sampleDocument)->Arg(100'000'000);
BENCHMARK(readRows)
    ->ArgsProduct({benchmark::CreateRange(1'000, 100'000'000, 10), {100'000'000}})
    ->Args({1'000, 10'000});
