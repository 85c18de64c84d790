/// Linear work: documents, replacing, splitting and command output, from 10 KB to 100 MB.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

#include "bench/mirel_bench_document.h"
#include "collectors/mirel_collectors_system.h"
#include "generator/mirel_generator_walk.h"
#include "json/mirel_json_parser.h"
#include "json/mirel_json_value.h"

namespace {

std::string repeated(const std::string& piece, long size) {
  std::string text;
  while (text.size() < static_cast<unsigned long>(size))
    text += piece;
  return text;
}

void report(benchmark::State& state, unsigned long bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<long>(bytes));
  state.SetComplexityN(static_cast<long>(bytes));
}

void parse(benchmark::State& state) {
  const mirel_string text(document(state.range(0)).c_str());
  for (auto round : state) {
    state.PauseTiming();  // the parser takes its text over
    mirel_string input = text;
    state.ResumeTiming();
    std::unique_ptr<Value>(JsonParser().parse(std::move(input)));
  }
  report(state, text.length());
}

void write(benchmark::State& state) {
  const std::unique_ptr<Value> root(JsonParser().parse(document(state.range(0)).c_str()));
  unsigned long length = 0;
  for (auto round : state)
    length = root->stringify(0).length();
  report(state, length);
}

void cloneTree(benchmark::State& state) {
  const std::unique_ptr<Value> root(JsonParser().parse(document(state.range(0)).c_str()));
  for (auto round : state)
    std::unique_ptr<Value>(root->clone());
  report(state, static_cast<unsigned long>(state.range(0)));
}

/// A match every ten characters: a million of them at 10 MB.
void replaceAll(benchmark::State& state) {
  const mirel_string text(repeated("$HOME/bin:", state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(text.replace_all("$home", "/home/kato"));
  report(state, text.length());
}

void splitArgs(benchmark::State& state) {
  const mirel_string text(repeated("select tbspace, tbspacetype,  pagesize from syscat.tablespaces ", state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(Generator::split_args(text, mirel_string::npos));
  report(state, text.length());
}

void execute(benchmark::State& state, const char* lineLength) {
  const std::string size = std::to_string(state.range(0));
  const mirel_string command(
      ("head -c " + size + " /dev/zero | tr '\\0' x | fold -b -w " + lineLength).c_str());
  unsigned long length = 0;
  for (auto round : state)
    length = executeGet(command).length();
  report(state, length);
}

constexpr long kSmallest = 10'000;
constexpr long kLargest = 100'000'000;

}  // namespace

BENCHMARK(parse)->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
BENCHMARK(write)->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
BENCHMARK(cloneTree)->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
BENCHMARK(replaceAll)->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
BENCHMARK(splitArgs)->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(execute, shortLines, "60")
    ->RangeMultiplier(10)
    ->Range(kSmallest, kLargest)
    ->UseRealTime()
    ->Complexity(benchmark::oN);
BENCHMARK_CAPTURE(execute, oneLine, "1000000000")
    ->RangeMultiplier(10)
    ->Range(kSmallest, kLargest)
    ->UseRealTime()
    ->Complexity(benchmark::oN);
