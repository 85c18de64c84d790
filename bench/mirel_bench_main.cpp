#include <benchmark/benchmark.h>

#include "platform/services.h"

int main(int count, char** arguments) {
  ossOneTimeOnly();
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  ossTerminate();
  return 0;
}
