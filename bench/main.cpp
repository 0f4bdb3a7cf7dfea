// Runs the benchmarks of the plug-in's own work, each repetition among those of the two reference
// loops, and prints medians: their ratio to the loops says more than the time does of one machine.
#include "bench/quiet_gl.h"
#include "protocol/render_visual_data.h"
#include "tests/stand_ins/call_log.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor::bench {
namespace {

constexpr const char* kFusedLoop = "512 fused multiply-adds";
constexpr const char* kCopyLoop = "copy of 2050 bytes";

void FusedLoop(benchmark::State& state) {
  std::array<float, 512> values;
  values.fill(0.5F);
  for (auto _ : state) {
    for (float& value : values)
      value = std::fma(value, 0.65F, 0.175F);
    benchmark::DoNotOptimize(values);
  }
}

void CopyLoop(benchmark::State& state) {
  RenderVisualData from{};
  RenderVisualData to;
  for (auto _ : state) {
    benchmark::DoNotOptimize(from);
    std::memcpy(&to, &from, sizeof to);
    benchmark::DoNotOptimize(to);
  }
}

// Microseconds that a median may take, by the beginning of a benchmark's name.
struct Limit {
  std::string_view name;
  double microseconds;
};
constexpr Limit kLimits[] = {{"intake", 5.0}, {"PreProcess", 10.0}, {"default frame", 60.0}};

std::string LimitOf(const std::string& name) {
  for (const Limit& limit : kLimits)
    if (name.starts_with(limit.name))
      return "< " + std::to_string(static_cast<int>(limit.microseconds));
  return "";
}

/// Prints a line for the medians of each benchmark once all have run.
class Table final : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context& context) override {
    PrintBasicContext(&GetErrorStream(), context);
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred)
        std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
      if (run.aggregate_name == "median") medians_.push_back(run);
      const auto allocations = run.counters.find("allocations");
      if (run.run_type != Run::RT_Iteration || allocations == run.counters.end()) continue;
      double& most = allocations_[run.run_name.function_name];
      most = std::max(most, allocations->second.value);
    }
  }

  void Finalize() override {
    std::sort(medians_.begin(), medians_.end(), [](const Run& a, const Run& b) {
      return a.run_name.function_name < b.run_name.function_name;
    });
    std::map<std::string, double> times;
    for (const Run& run : medians_)
      times[run.run_name.function_name] = Microseconds(run);
    std::printf("%-30s %12s %6s %10s %10s %12s\n", "median of the processor time", "microseconds",
                "limit", "/ 512 fma", "/ copy", "allocations");
    for (const Run& run : medians_) {
      const std::string& name = run.run_name.function_name;
      const auto over = [&](const char* loop) { return Microseconds(run) / times[loop]; };
      const auto allocations = allocations_.find(name);
      std::printf("%-30s %12.3f %6s %10.2f %10.1f %12s\n", name.c_str(), Microseconds(run),
                  LimitOf(name).c_str(), over(kFusedLoop), over(kCopyLoop),
                  allocations == allocations_.end()
                      ? ""
                      : std::to_string(static_cast<long>(allocations->second)).c_str());
    }
  }

private:
  static double Microseconds(const Run& run) {
    return run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e6;
  }

  std::vector<Run> medians_;
  std::map<std::string, double> allocations_; ///< the most of any repetition
};

int Main(int argc, char** argv) {
  stand_ins::SetSilent(true);
  UseQuietGl();
  // Defaults that the command line may change.
  char repetitions[] = "--benchmark_repetitions=15";
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  char least[] = "--benchmark_min_time=0.1";
  std::vector<char*> arguments = {argv[0], repetitions, interleaving, least};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  auto count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  benchmark::RegisterBenchmark(kFusedLoop, FusedLoop);
  benchmark::RegisterBenchmark(kCopyLoop, CopyLoop);
  Table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  return 0;
}

} // namespace
} // namespace halvenor::bench

int main(int argc, char** argv) {
  return halvenor::bench::Main(argc, argv);
}
