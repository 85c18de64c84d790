/// RapidJSON's events from a file in memory. Apart from its events of a text, which the compiler makes slower
/// beside them.

#include <benchmark/benchmark.h>
#include <rapidjson/filereadstream.h>
#include <rapidjson/reader.h>
#include <sys/mman.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/mirel_bench_document.h"

namespace {

void saxRapidJsonFile(benchmark::State& state, std::string (*document)(long)) {
  const std::string text = document(state.range(0));
  FILE* const file = fdopen(memfd_create("in", 0), "w+");
  std::vector<char> buffer(256 << 10);
  if (fwrite(text.data(), 1, text.size(), file) != text.size()) {
    state.SkipWithError("no room");
  }
  for (auto round : state) {
    rewind(file);
    rapidjson::Reader reader;
    rapidjson::FileReadStream stream(file, buffer.data(), buffer.size());
    rapidjson::BaseReaderHandler<> nobody;
    benchmark::DoNotOptimize(reader.Parse(stream, nobody).IsError());
  }
  fclose(file);
}

}  // namespace

BENCHMARK_CAPTURE(saxRapidJsonFile, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(saxRapidJsonFile, sample, sampleDocument)->Arg(100'000'000);
