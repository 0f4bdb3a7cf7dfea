// What a frame of halvenor-render costs beside the same frame in the OpenGL driver alone: the
// plug-in, the platform layer, the read-back and the hand-over against a replay of the frame's
// OpenGL calls that ends with the picture finished. The two take turns. And what each part of the
// frame takes in the driver.
#include "bench/demo_records.h"
#include "bench/gl_tape.h"
#include "render/offscreen_show.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvenor::bench {
namespace {

using render::kNanosecondsPerRecord;
using render::kNanosecondsPerSecond;

constexpr std::uint64_t kFrameInterval = kNanosecondsPerSecond / 60;

[[noreturn]] void Fail(const std::string& reason) {
  std::fprintf(stderr, "halvenor-frame-bench: %s\n", reason.c_str());
  std::exit(1);
}

/// Time that has passed, and processor time of all threads, in milliseconds.
struct Times {
  double elapsed;
  double processor;
};

/// A frame by halvenor-render's road, by the driver alone, and there part by part.
struct Frame {
  Times whole;
  Times driver;
  PartTimes parts;
};

template <class Work>
Times Measure(const Work& work) {
  const double processorBefore = ProcessorMilliseconds();
  const auto before = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - before;
  return {elapsed.count(), ProcessorMilliseconds() - processorBefore};
}

/// The median of what `of` finds in each.
template <class Of>
double Median(const std::vector<Frame>& frames, const Of& of) {
  std::vector<double> values(frames.size());
  std::transform(frames.begin(), frames.end(), values.begin(), of);
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

class Comparison {
public:
  explicit Comparison(const render::Options& options)
      : width_(options.width), height_(options.height) {
    std::string error;
    show_ = render::OffscreenShow::Open(options, error);
    if (!show_) Fail(error);
    picture_.resize(std::size_t{4} * static_cast<std::size_t>(options.width) *
                    static_cast<std::size_t>(options.height));
  }

  /// Goes on to `second` of the tune and measures `frames` frames there.
  void At(int second, int frames) {
    const std::vector<RenderVisualData>& records = DemoRecords();
    const std::size_t until =
        static_cast<std::size_t>(second) * kNanosecondsPerSecond / kNanosecondsPerRecord;
    for (; next_ < std::min(until, records.size()); ++next_)
      show_->Deliver(records[next_]);
    DrawFrame();
    tape_.Start();
    DrawFrame();
    tape_.Stop();
    tape_.Play();
    if (tape_.Picture(width_, height_) != picture_) Fail("the replay shows another picture");

    std::vector<Frame> measured;
    for (int i = 0; i < frames; ++i) {
      const Times whole = Measure([this] { DrawFrame(); });
      const Times driver = Measure([this] { tape_.Play(); });
      measured.push_back({whole, driver, tape_.PlayInParts()});
    }
    Print(second, measured);
  }

private:
  void DrawFrame() {
    std::string error;
    time_ += kFrameInterval;
    if (!show_->Draw(time_, picture_, error)) Fail(error);
  }

  void Print(int second, const std::vector<Frame>& frames) const {
    std::printf("%4d s %8zu", second, tape_.Length());
    for (const auto kind : {&Times::elapsed, &Times::processor}) {
      std::printf("  %10.3f %10.3f %8.3f",
                  Median(frames, [=](const Frame& f) { return f.whole.*kind; }),
                  Median(frames, [=](const Frame& f) { return f.driver.*kind; }),
                  Median(frames, [=](const Frame& f) { return f.whole.*kind / (f.driver.*kind); }));
    }
    std::printf("\n      ");
    for (std::size_t part = 0; part < kPartNames.size(); ++part)
      std::printf(" %s %.3f", kPartNames[part],
                  Median(frames, [=](const Frame& f) { return f.parts[part]; }));
    std::printf("\n");
  }

  int width_;
  int height_;
  std::unique_ptr<render::OffscreenShow> show_;
  std::vector<std::uint8_t> picture_;
  GlTape tape_;
  std::size_t next_ = 0;
  std::uint64_t time_ = 0;
};

} // namespace
} // namespace halvenor::bench

int main(int argc, char** argv) {
  const int frames = argc > 1 ? std::atoi(argv[1]) : 100;
  if (frames < 1) {
    std::fprintf(stderr, "usage: halvenor-frame-bench [FRAMES]\n");
    return 1;
  }
  halvenor::bench::GlTape::InterceptCalls();
  std::printf("medians, ms: %35s  %30s\n  at    calls  %10s %10s %8s  %10s %10s %8s\n",
              "time that passed", "processor time of all threads", "frame", "driver", "ratio",
              "frame", "driver", "ratio");
  for (const auto& [width, height] : {std::pair{640, 480}, {1280, 720}, {1920, 1080}}) {
    std::printf("%dx%d\n", width, height);
    halvenor::render::Options options;
    options.width = width;
    options.height = height;
    halvenor::bench::Comparison comparison(options);
    for (const int second : {10, 30, 50})
      comparison.At(second, frames);
  }
}
