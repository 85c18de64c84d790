/// What a user would pick instead: a JSON library known for its speed, and plain loops.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/mirel_bench_document.h"

namespace {

void parseRapidJson(benchmark::State& state) {
  const std::string text = document(state.range(0));
  for (auto round : state) {
    rapidjson::Document parsed;
    benchmark::DoNotOptimize(parsed.Parse(text.c_str(), text.size()).HasParseError());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}

void writeRapidJson(benchmark::State& state) {
  rapidjson::Document parsed;
  parsed.Parse(document(state.range(0)).c_str());
  unsigned long length = 0;
  for (auto round : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    parsed.Accept(writer);
    length = buffer.GetSize();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<long>(length));
}

/// A command's output, read as the manual page of fgets(3) suggests, escaped and quoted.
void executePlain(benchmark::State& state, const char* lineLength) {
  const std::string size = std::to_string(state.range(0));
  const std::string command = "head -c " + size + " /dev/zero | tr '\\0' x | fold -b -w " + lineLength;
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
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(parseRapidJson)->Arg(10'000)->Arg(100'000'000);
BENCHMARK(writeRapidJson)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(executePlain, shortLines, "60")->Arg(10'000)->Arg(100'000'000)->UseRealTime();
BENCHMARK_CAPTURE(executePlain, oneLine, "1000000000")->Arg(10'000)->Arg(100'000'000)->UseRealTime();
