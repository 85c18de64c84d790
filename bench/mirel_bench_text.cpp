/// Command output, beside what stands in mirel_bench_reference.cpp; then work whose cost has to grow with its
/// size and no faster.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

/// The second argument in bytes, in pieces of the first.
template <class Piece, class Make>
std::vector<Piece> pieces(const benchmark::State& state, Make make) {
  std::vector<Piece> all;
  for (long bytes = 0; bytes < state.range(1); bytes += state.range(0))
    all.push_back(make(state.range(0)));
  return all;
}

void cloneRows(benchmark::State& state) {
  const auto documents =
      pieces<std::unique_ptr<Value>>(state, [](long size) { return parsed(document(size)); });
  std::vector<std::unique_ptr<Value>> copies(documents.size());
  for (auto round : state) {
    std::transform(documents.begin(), documents.end(), copies.begin(),
                   [](const auto& original) { return std::unique_ptr<Value>(original->clone()); });
    std::fill(copies.begin(), copies.end(), nullptr);
  }
}

/// One evaluated copy of a value full of commands.
void forEach(benchmark::State& state) {
  const auto pairs = pieces<std::unique_ptr<KeyValuePair>>(state, [](long size) {
    const std::string group = R"("group": {"name": "native table name", "rows": "native table rows",
                                 "columns": "native table columns", "organization": "native table organization"})";
    const std::string groups = repeated(group + ", ", size - static_cast<long>(group.size())) + group;
    return std::make_unique<KeyValuePair>("$foreach table [groups]",
                                          JsonParser().parse(("{" + groups + "}").c_str()));
  });
  Generator generator;
  for (auto round : state) {
    for (const auto& pair : pairs)
      std::unique_ptr<Value>(generator.cloneAndRun(pair.get()));
  }
}

/// A match every ten characters: ten million of them in 100 MB.
void replaceAll(benchmark::State& state) {
  const auto texts = pieces<mirel_string>(
      state, [](long size) { return mirel_string(repeated("$HOME/bin:", size).c_str()); });
  for (auto round : state) {
    for (const mirel_string& text : texts)
      benchmark::DoNotOptimize(text.replace_all("$home", "/home/kato"));
  }
}

void splitArgs(benchmark::State& state) {
  const auto texts = pieces<mirel_string>(state, [](long size) {
    const char words[] = "select tbspace, tbspacetype,  pagesize from syscat.tablespaces ";
    return mirel_string(repeated(words, size).c_str());
  });
  for (auto round : state) {
    for (const mirel_string& text : texts)
      benchmark::DoNotOptimize(Generator::split_args(text, mirel_string::npos));
  }
}

void execute(benchmark::State& state, std::string (*output)(long)) {
  const mirel_string command(output(state.range(0)).c_str());
  for (auto round : state)
    benchmark::DoNotOptimize(PrimitiveValue(executeGet(command)).stringify(0));
}

constexpr long kSmall = 10'000;
constexpr long kLarge = 100'000'000;

}  // namespace

BENCHMARK_CAPTURE(execute, shortLines, shortLines)->Arg(kSmall)->Arg(kLarge)->UseRealTime();
BENCHMARK_CAPTURE(execute, oneLine, oneLine)->Arg(kLarge)->UseRealTime();

// 100 MB in pieces of each size: so the processor's caches help none of them.
#define BENCHMARK_GROWTH(work) \
  BENCHMARK(work)->ArgsProduct({benchmark::CreateRange(1'000, kLarge, 10), {kLarge}})->Args({1'000, kSmall})
BENCHMARK_GROWTH(cloneRows);
BENCHMARK_GROWTH(forEach);
BENCHMARK_GROWTH(replaceAll);
BENCHMARK_GROWTH(splitArgs);
