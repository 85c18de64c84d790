/// What a user would write instead: plain loops, and RapidJSON's events. A program of its own, with nothing
/// of ours in it.

#include <benchmark/benchmark.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/mirel_bench_document.h"
#include "bench/mirel_bench_output.h"
#include "bench/mirel_bench_rows.h"
#include "bench/mirel_bench_server.h"
#include "bench/mirel_bench_sockets.h"
#include "bench/mirel_bench_sql_bare.h"

namespace {

void saxRapidJson(benchmark::State& state, std::string (*document)(long)) {
  const std::string text = document(state.range(0));
  for (auto round : state) {
    rapidjson::Reader reader;
    rapidjson::MemoryStream stream(text.data(), text.size());
    rapidjson::BaseReaderHandler<> nobody;
    benchmark::DoNotOptimize(reader.Parse(stream, nobody).IsError());
  }
}

/// A command's output, read as the manual page of fgets(3) suggests, escaped and quoted.
void executePlain(benchmark::State& state, std::string (*output)(long)) {
  const std::string command = output(state.range(0));
  for (auto round : state) {
    std::string printed;
    FILE* stream = popen(command.c_str(), "r");
    for (char piece[128]; fgets(piece, sizeof piece, stream) != nullptr;) {
      printed += piece;
    }
    pclose(stream);
    std::string text = "\"";
    for (char character : printed) {
      if (character == '\n') {
        text += "\\n";
      } else {
        if (character == '"' || character == '\\') {
          text += '\\';
        }
        text += character;
      }
    }
    text += '"';
    benchmark::DoNotOptimize(text.data());
  }
}

void bareLoop(benchmark::State& state, const char* dataSource) {
  const std::string sql = rowsQuery(dataSource, std::to_string(state.range(0)));
  for (auto round : state)
    benchmark::DoNotOptimize(bareRows(dataSource, sql));
}

/// What comes is dropped.
unsigned long countAll(int peer) {
  return receiveAll(peer, [](const char*, unsigned long) {});
}

void bareSends(benchmark::State& state) {
  const std::string document(static_cast<unsigned long>(state.range(0)), 'x');
  const std::string request = "POST /tarn HTTP/1.1\r\nHost: h\r\nConnection: close\r\nContent-Length: " +
                              std::to_string(document.size()) + "\r\n\r\n" + document;
  Server server(document.size());
  for (auto round : state) {
    const int peer = connected(server.address());
    sendAll(peer, request);
    if (countAll(peer) == 0) {
      state.SkipWithError("no answer");
      break;
    }
  }
}

void bareReceives(benchmark::State& state) {
  Sink sink = respondingSink(static_cast<unsigned long>(state.range(0)));
  for (auto round : state) {
    const int peer = connected(sink.address());
    sendAll(peer, "GET /config HTTP/1.1\r\n\r\n");
    if (countAll(peer) < static_cast<unsigned long>(state.range(0))) {
      state.SkipWithError("the response is not whole");
      break;
    }
  }
}

}  // namespace

BENCHMARK_CAPTURE(saxRapidJson, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(saxRapidJson, sample, sampleDocument)->Arg(100'000'000);
BENCHMARK_CAPTURE(executePlain, shortLines, shortLines)->Arg(10'000)->Arg(100'000'000)->UseRealTime();
BENCHMARK_CAPTURE(executePlain, oneLine, oneLine)->Arg(10'000)->Arg(100'000'000)->UseRealTime();
BENCHMARK_CAPTURE(bareLoop, sqlite, "SQLITE")->RangeMultiplier(10)->Range(10'000, 1'000'000)->UseRealTime();
BENCHMARK_CAPTURE(bareLoop, postgresql, "POSTGRESQL")
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->UseRealTime();
BENCHMARK(bareSends)->Arg(10'000)->UseRealTime();
BENCHMARK(bareSends)->Arg(50'000'000)->Iterations(3)->UseRealTime();
BENCHMARK(bareReceives)->RangeMultiplier(10)->Range(10'000, 100'000'000)->UseRealTime();
