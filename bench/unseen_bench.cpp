// What frames cost that nobody sees, beside seen ones: blocks of each kind take turns, so that
// whatever else the machine does meets all of them.
#include "bench/demo_records.h"
#include "render/offscreen_show.h"
#include "render/time_line.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace halvenor::bench {
namespace {

using render::kNanosecondsPerRecord;
using render::kNanosecondsPerSecond;

constexpr std::array kUses = {kHalvenorFrameSeen, kHalvenorFrameTrailsOnly, kHalvenorFrameUndrawn};
constexpr const char* kNames[] = {"seen", "trails only", "undrawn"};
// Trails may be drawn up to eight frames later: long blocks hide that.
constexpr int kBlock = 96;

double Seconds(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// A frame, in microseconds.
struct Times {
  double elapsed;
  double processor; ///< of all threads
};

class Show {
public:
  Show(int width, int height) {
    options_.width = width;
    options_.height = height;
    show_ = render::OffscreenShow::Open(options_, error_);
    if (!show_) Fail();
    picture_.resize(std::size_t{4} * static_cast<std::size_t>(width) *
                    static_cast<std::size_t>(height));
  }

  Times Block(HalvenorFrameUse use) {
    const double elapsed = Seconds(CLOCK_MONOTONIC);
    const double processor = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    for (int i = 0; i < kBlock; ++i)
      Step(use);
    const auto perFrame = [](double since, clockid_t clock) {
      return (Seconds(clock) - since) * 1e6 / kBlock;
    };
    return {perFrame(elapsed, CLOCK_MONOTONIC), perFrame(processor, CLOCK_PROCESS_CPUTIME_ID)};
  }

private:
  [[noreturn]] void Fail() const {
    std::fprintf(stderr, "halvenor-unseen-bench: %s\n", error_.c_str());
    std::exit(1);
  }

  void Step(HalvenorFrameUse use) {
    time_ += kNanosecondsPerSecond / 60;
    const std::vector<RenderVisualData>& records = DemoRecords();
    for (; next_ * kNanosecondsPerRecord < time_; ++next_)
      show_->Deliver(records[next_ % records.size()]);
    const bool isDone = use == kHalvenorFrameSeen ? show_->Draw(time_, picture_, error_)
                                                  : show_->DrawUnseen(time_, use, error_);
    if (!isDone) Fail();
  }

  render::Options options_;
  std::string error_;
  std::unique_ptr<render::OffscreenShow> show_;
  std::vector<std::uint8_t> picture_;
  std::uint64_t time_ = 0;
  std::size_t next_ = 0;
};

template <class Of>
double Median(const std::vector<Times>& all, const Of& of) {
  std::vector<double> values(all.size());
  std::transform(all.begin(), all.end(), values.begin(), of);
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void Measure(int width, int height, int rounds) {
  Show show(width, height);
  show.Block(kHalvenorFrameSeen);
  std::array<std::vector<Times>, kUses.size()> all;
  for (int round = 0; round < rounds; ++round)
    for (std::size_t i = 0; i < kUses.size(); ++i)
      all[i].push_back(show.Block(kUses[i]));
  std::printf("%dx%d\n", width, height);
  const double seen = Median(all[0], [](const Times& times) { return times.processor; });
  for (std::size_t i = 0; i < kUses.size(); ++i) {
    const double processor = Median(all[i], [](const Times& times) { return times.processor; });
    std::printf("%13s %10.1f %10.1f %8.4f\n", kNames[i],
                Median(all[i], [](const Times& times) { return times.elapsed; }), processor,
                processor / seen);
  }
}

} // namespace
} // namespace halvenor::bench

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 15;
  if (rounds < 1) {
    std::fprintf(stderr, "usage: halvenor-unseen-bench [ROUNDS]\n");
    return 1;
  }
  std::printf("a frame, medians, us: elapsed, processor time, share of a seen one\n");
  for (const auto& [width, height] : {std::pair{640, 480}, {1280, 720}, {1920, 1080}})
    halvenor::bench::Measure(width, height, rounds);
}
