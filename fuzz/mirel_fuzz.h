#pragma once
/// What the fuzzers have in common. Each defines `LLVMFuzzerTestOneInput`, which returns 0 or does not
/// return.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process when something does not hold: the fuzzer shows the stack and keeps the input.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
  }
}
