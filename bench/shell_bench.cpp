// What a delivery and a frame cost.
#include "bench/demo_records.h"
#include "platform/clock.h"
#include "renderer/renderer.h"
#include "shell/audio_intake.h"
#include "tests/shell/test_host.h"
#include "tests/stand_ins/allocation_counter.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace halvenor::bench {
namespace {

constexpr std::uint64_t kFrameInterval = 1'000'000'000 / 60;

/// Runs the loop of a benchmark and counts what it allocates.
template <class Work>
void Measure(benchmark::State& state, const Work& work) {
  const std::uint64_t before = stand_ins::AllocationsOfThisThread();
  for (auto _ : state)
    work();
  state.counters["allocations"] =
      static_cast<double>(stand_ins::AllocationsOfThisThread() - before);
}

/// The tune's records, one after the other, over and over.
const RenderVisualData& NextRecord() {
  static std::size_t next = 0;
  return DemoRecords()[next++ % DemoRecords().size()];
}

void Intake(benchmark::State& state) {
  const auto record = std::make_unique<VisualPluginData>();
  record->highestActiveBin = 150.0F;
  Measure(state, [&] { ProcessRenderData(record.get(), &NextRecord()); });
}

void Message(benchmark::State& state) {
  TestHost host;
  host.Init();
  Measure(state, [&] {
    RenderVisualData data = NextRecord();
    host.SendData(&data);
  });
}

void Frame(benchmark::State& state) {
  clock::UseStepped(kFrameInterval);
  TestHost host;
  host.Init();
  for (std::size_t i = 0; i < DemoRecords().size() / 2; ++i)
    ProcessRenderData(host.Record(), &NextRecord());
  Renderer drawer;
  HalvenorPort port{};
  port.kind = kHalvenorPortOffscreen;
  port.bounds = {0, 0, 720, 1280};
  if (drawer.Open(&port, &port.bounds) == 0) state.SkipWithError("the renderer does not open");
  Measure(state, [&] {
    clock::Step(clock::Now() + kFrameInterval);
    drawer.Render(host.Record());
  });
  clock::UseRealTime();
}

const auto* const kIntake = benchmark::RegisterBenchmark("intake of one delivery", Intake);
const auto* const kMessage = benchmark::RegisterBenchmark("delivery by message", Message);
const auto* const kFrame = benchmark::RegisterBenchmark("default frame", Frame);

} // namespace
} // namespace halvenor::bench
