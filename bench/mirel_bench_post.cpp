/// Posting a document; collecting a response.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/mirel_bench_server.h"
#include "http/mirel_http_client.h"

namespace {

void post(benchmark::State& state) {
  const mirel_string document(std::string(static_cast<unsigned long>(state.range(0)), 'x').c_str());
  Server server(document.length());
  HttpClient client("127.0.0.1", server.port());
  for (auto round : state) {
    if (client.post("/tarn", document).find(" 201 ", 0) == mirel_string::npos) {
      state.SkipWithError("no receipt");
      break;
    }
  }
}

void collectResponse(benchmark::State& state) {
  const auto length = static_cast<unsigned long>(state.range(0));
  Sink sink = respondingSink(length);
  HttpClient client("127.0.0.1", sink.port());
  for (auto round : state) {
    if (client.get("/config").length() != length) {
      state.SkipWithError("the response is not whole");
      break;
    }
  }
}

constexpr long kDocument = 50'000'000;
constexpr int kTimes = 3;  // the server keeps every one of them

}  // namespace

BENCHMARK(post)->Arg(10'000)->UseRealTime();
BENCHMARK(post)->Arg(kDocument)->Iterations(kTimes)->UseRealTime();
BENCHMARK(collectResponse)->RangeMultiplier(10)->Range(10'000, 100'000'000)->UseRealTime();
