/// What a user would pick instead: a JSON library known for its speed, and plain loops.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/mirel_bench_document.h"
#include "bench/mirel_bench_output.h"

namespace {

void parseRapidJson(benchmark::State& state) {
  const std::string text = document(state.range(0));
  for (auto round : state) {
    rapidjson::Document parsed;
    benchmark::DoNotOptimize(parsed.Parse(text.c_str(), text.size()).HasParseError());
  }
}

void writeRapidJson(benchmark::State& state) {
  rapidjson::Document parsed;
  parsed.Parse(document(state.range(0)).c_str());
  for (auto round : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    parsed.Accept(writer);
    benchmark::DoNotOptimize(buffer.GetSize());
  }
}

/// A command's output, read as the manual page of fgets(3) suggests, escaped and quoted.
void executePlain(benchmark::State& state, const char* lineLength) {
  const std::string command = output(state.range(0), lineLength);
  for (auto round : state) {
    std::string output;
    FILE* stream = popen(command.c_str(), "r");
    for (char piece[128]; fgets(piece, sizeof piece, stream) != nullptr;) {
      output += piece;
    }
    pclose(stream);
    std::string text = "\"";
    for (char character : output) {
      if (character == '\n') {
        text += "\\n";
      } else {
        text += character == '"' || character == '\\' ? std::string{'\\', character} : std::string{character};
      }
    }
    text += '"';
    benchmark::DoNotOptimize(text.data());
  }
}

}  // namespace

BENCHMARK(parseRapidJson)->Arg(10'000)->Arg(100'000'000);
BENCHMARK(writeRapidJson)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(executePlain, shortLines, "60")->Arg(10'000)->Arg(100'000'000)->UseRealTime();
BENCHMARK_CAPTURE(executePlain, oneLine, "1000000000")->Arg(10'000)->Arg(100'000'000)->UseRealTime();
