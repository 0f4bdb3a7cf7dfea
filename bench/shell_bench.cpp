// What a delivery and a frame cost.
#include "bench/demo_records.h"
#include "bench/heap_counter.h"
#include "platform/clock.h"
#include "renderer/renderer.h"
#include "shell/audio_intake.h"
#include "tests/shell/test_host.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace halvenor::bench {
namespace {

constexpr std::uint64_t kFrameInterval = 1'000'000'000 / 60;

/// Counts what the loop of a benchmark allocates.
class AllocationsOf {
public:
  explicit AllocationsOf(benchmark::State& state) : state_(state), before_(BlocksAskedFor()) {}
  ~AllocationsOf() {
    const std::uint64_t count = BlocksAskedFor() - before_;
    state_.counters["allocations"] = static_cast<double>(count);
  }
  AllocationsOf(const AllocationsOf&) = delete;
  AllocationsOf& operator=(const AllocationsOf&) = delete;

private:
  benchmark::State& state_;
  std::uint64_t before_;
};

/// The tune's records, one after the other, over and over.
class Deliveries {
public:
  const RenderVisualData& Next() {
    const std::vector<RenderVisualData>& records = DemoRecords();
    return records[next_++ % records.size()];
  }

private:
  std::size_t next_ = 0;
};

void Intake(benchmark::State& state) {
  const auto record = std::make_unique<VisualPluginData>();
  record->highestActiveBin = 150.0F;
  Deliveries deliveries;
  const AllocationsOf allocations(state);
  for (auto _ : state)
    ProcessRenderData(record.get(), &deliveries.Next());
}

void Message(benchmark::State& state) {
  TestHost host;
  host.Init();
  Deliveries deliveries;
  const AllocationsOf allocations(state);
  for (auto _ : state) {
    RenderVisualData data = deliveries.Next();
    host.SendData(&data);
  }
}

void Frame(benchmark::State& state) {
  clock::UseStepped(kFrameInterval);
  TestHost host;
  host.Init();
  Deliveries deliveries;
  for (std::size_t i = 0; i < DemoRecords().size() / 2; ++i)
    ProcessRenderData(host.Record(), &deliveries.Next());
  Renderer drawer;
  HalvenorPort port{};
  port.kind = kHalvenorPortOffscreen;
  port.bounds = {0, 0, 720, 1280};
  if (drawer.Open(&port, &port.bounds) == 0) state.SkipWithError("the renderer does not open");
  const AllocationsOf allocations(state);
  for (auto _ : state) {
    clock::Step(clock::Now() + kFrameInterval);
    drawer.Render(host.Record());
  }
  clock::UseRealTime();
}

const auto* const kIntake = benchmark::RegisterBenchmark("intake of one delivery", Intake);
const auto* const kMessage = benchmark::RegisterBenchmark("delivery by message", Message);
const auto* const kFrame = benchmark::RegisterBenchmark("default frame", Frame);

} // namespace
} // namespace halvenor::bench
