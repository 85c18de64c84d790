/// What a user would pick instead: a JSON library known for its speed, and plain loops. A program of its own,
/// with nothing of ours in it.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/mirel_bench_document.h"
#include "bench/mirel_bench_output.h"
#include "bench/mirel_bench_rows.h"
#include "bench/mirel_bench_server.h"
#include "bench/mirel_bench_sql_bare.h"

namespace {

void parseRapidJson(benchmark::State& state, std::string (*document)(long)) {
  const std::string text = document(state.range(0));
  for (auto round : state) {
    rapidjson::Document parsed;
    benchmark::DoNotOptimize(parsed.Parse(text.c_str(), text.size()).HasParseError());
  }
}

void writeRapidJson(benchmark::State& state, std::string (*document)(long)) {
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

int connected(sockaddr* address) {
  const int peer = socket(AF_INET, SOCK_STREAM, 0);
  return connect(peer, address, sizeof(sockaddr_in)) == 0 ? peer : -1;
}

unsigned long receiveAll(int peer) {
  char piece[1024];
  unsigned long length = 0;
  for (ssize_t count = 1; count > 0; length += static_cast<unsigned long>(count)) {
    count = std::max<ssize_t>(0, recv(peer, piece, sizeof piece, 0));
  }
  close(peer);
  return length;
}

void bareSends(benchmark::State& state) {
  const std::string document(static_cast<unsigned long>(state.range(0)), 'x');
  const std::string request = "POST /tarn HTTP/1.1\r\nHost: h\r\nConnection: close\r\nContent-Length: " +
                              std::to_string(document.size()) + "\r\n\r\n" + document;
  Server server(document.size());
  for (auto round : state) {
    const int peer = connected(server.address());
    for (std::size_t offset = 0; offset < request.size(); offset += 1024) {
      send(peer, request.data() + offset, std::min<std::size_t>(1024, request.size() - offset), MSG_NOSIGNAL);
    }
    if (receiveAll(peer) == 0) {
      state.SkipWithError("no answer");
      break;
    }
  }
}

/// What comes is dropped.
void bareReceives(benchmark::State& state) {
  Sink sink = respondingSink(static_cast<unsigned long>(state.range(0)));
  for (auto round : state) {
    const int peer = connected(sink.address());
    const char request[] = "GET /config HTTP/1.1\r\n\r\n";
    send(peer, request, sizeof request - 1, MSG_NOSIGNAL);
    if (receiveAll(peer) < static_cast<unsigned long>(state.range(0))) {
      state.SkipWithError("the response is not whole");
      break;
    }
  }
}

}  // namespace

BENCHMARK_CAPTURE(parseRapidJson, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(parseRapidJson, mixed, mixedDocument)->Arg(100'000'000);
BENCHMARK_CAPTURE(writeRapidJson, rows, document)->Arg(10'000)->Arg(100'000'000);
BENCHMARK_CAPTURE(writeRapidJson, mixed, mixedDocument)->Arg(100'000'000);
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
