// What one OpenGL call of the plug-in costs before it reaches the function that serves it.
#include "gl_calls/gl.h"

#include <benchmark/benchmark.h>

namespace halvenor::bench {
namespace {

constexpr int kCalls = 1000;

void ThroughTable(benchmark::State& state) {
  for (auto _ : state)
    for (int i = 0; i < kCalls; ++i)
      glVertex3f(0.0F, 0.0F, 0.0F);
}

const auto* const kThroughTable = benchmark::RegisterBenchmark("1000 OpenGL calls", ThroughTable);

} // namespace
} // namespace halvenor::bench
