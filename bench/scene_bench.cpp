// What the vertices of a frame cost, on each of the frequency scales.
#include "bench/demo_records.h"
#include "scene/spectrum.h"
#include "shell/audio_intake.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace halvenor::bench {
namespace {

void PreProcess(benchmark::State& state, std::int32_t scale) {
  const auto record = std::make_unique<VisualPluginData>();
  record->settings = DefaultSettings();
  record->settings.frequencyScale = scale;
  record->highestActiveBin = 150.0F;
  for (std::size_t i = 0; i < DemoRecords().size() / 2; ++i)
    ProcessRenderData(record.get(), &DemoRecords()[i]);
  Spectrum spectrum;
  for (auto _ : state) {
    spectrum.PreProcess(record.get());
    benchmark::DoNotOptimize(spectrum);
  }
  state.counters["vertices"] = spectrum.NumVertices();
}

const bool kRegistered = [] {
  const char* const names[] = {"PreProcess, linear", "PreProcess, square root",
                               "PreProcess, logarithmic", "PreProcess, blended"};
  for (std::int32_t scale = 0; scale < 4; ++scale)
    benchmark::RegisterBenchmark(names[scale], PreProcess, scale);
  return true;
}();

} // namespace
} // namespace halvenor::bench
