/// Documents and command output, beside what stands in mirel_bench_reference.cpp; then work whose cost has to
/// grow with its size and no faster.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

#include "bench/mirel_bench_document.h"
#include "bench/mirel_bench_output.h"
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

std::unique_ptr<Value> parsed(const std::string& text) {
  return std::unique_ptr<Value>(JsonParser().parse(text.c_str()));
}

void parse(benchmark::State& state, std::string (*document)(long)) {
  const mirel_string text(document(state.range(0)).c_str());
  for (auto round : state) {
    state.PauseTiming();  // the parser takes its text over
    mirel_string input = text;
    state.ResumeTiming();
    std::unique_ptr<Value>(JsonParser().parse(std::move(input)));
  }
}

void write(benchmark::State& state, std::string (*document)(long)) {
  const std::unique_ptr<Value> root = parsed(document(state.range(0)));
  for (auto round : state)
    benchmark::DoNotOptimize(root->stringify(0));
}

void cloneRows(benchmark::State& state) {
  const std::unique_ptr<Value> root = parsed(document(state.range(0)));
  for (auto round : state)
    std::unique_ptr<Value>(root->clone());
}

/// One evaluated copy of a value full of commands.
void forEach(benchmark::State& state) {
  const std::string group = R"("group": {"name": "native table name", "rows": "native table rows",
                               "columns": "native table columns", "organization": "native table organization"})";
  const std::string groups = repeated(group + ", ", state.range(0)) + group;
  KeyValuePair pair("$foreach table [groups]", JsonParser().parse(("{" + groups + "}").c_str()));
  Generator generator;
  for (auto round : state)
    std::unique_ptr<Value>(generator.cloneAndRun(&pair));
}

/// A match every ten characters: ten million of them at 100 MB.
void replaceAll(benchmark::State& state) {
  const mirel_string text(repeated("$HOME/bin:", state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(text.replace_all("$home", "/home/kato"));
}

void splitArgs(benchmark::State& state) {
  const mirel_string text(
      repeated("select tbspace, tbspacetype,  pagesize from syscat.tablespaces ", state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(Generator::split_args(text, mirel_string::npos));
}

void execute(benchmark::State& state, std::string (*output)(long)) {
  const mirel_string command(output(state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(PrimitiveValue(executeGet(command)).stringify(0));
}

constexpr long kSmall = 10'000;
constexpr long kLarge = 100'000'000;

}  // namespace

BENCHMARK_CAPTURE(parse, rows, document)->Arg(kSmall)->Arg(kLarge);
BENCHMARK_CAPTURE(parse, mixed, mixedDocument)->Arg(kLarge);
BENCHMARK_CAPTURE(write, rows, document)->Arg(kSmall)->Arg(kLarge);
BENCHMARK_CAPTURE(write, mixed, mixedDocument)->Arg(kLarge);
BENCHMARK_CAPTURE(execute, shortLines, shortLines)->Arg(kSmall)->Arg(kLarge)->UseRealTime();
BENCHMARK_CAPTURE(execute, oneLine, oneLine)->Arg(kLarge)->UseRealTime();

BENCHMARK(cloneRows)->RangeMultiplier(10)->Range(1'000, kLarge);
BENCHMARK(forEach)->RangeMultiplier(10)->Range(1'000, kLarge);
BENCHMARK(replaceAll)->RangeMultiplier(10)->Range(1'000, kLarge);
BENCHMARK(splitArgs)->RangeMultiplier(10)->Range(1'000, kLarge);
