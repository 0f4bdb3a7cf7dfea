// What a frame of halvenor-render costs beside the same frame in the OpenGL driver alone: the
// plug-in, the platform layer, the read-back and the hand-over against a replay of the frame's
// OpenGL calls that ends with the picture finished. The two take turns.
#include "bench/demo_records.h"
#include "bench/gl_tape.h"
#include "platform/agl.h"
#include "render/offscreen_show.h"

#include <GL/gl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halvenor::bench {
namespace {

using render::kNanosecondsPerRecord;
using render::kNanosecondsPerSecond;

constexpr std::uint64_t kFrameInterval = kNanosecondsPerSecond / 60;
constexpr int kFontSize = 9;
constexpr int kGlyphs = 256;

[[noreturn]] void Fail(const std::string& reason) {
  std::fprintf(stderr, "halvenor-frame-bench: %s\n", reason.c_str());
  std::exit(1);
}

/// Time that has passed, and processor time of all threads, in milliseconds.
struct Times {
  double elapsed;
  double processor;
};

/// A frame by halvenor-render's road, and by the driver alone.
struct Pair {
  Times whole;
  Times driver;
};

template <class Work>
Times Measure(const Work& work) {
  const auto processor = [] {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
  };
  const double processorBefore = processor();
  const auto before = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - before;
  return {elapsed.count(), processor() - processorBefore};
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A context and a frame buffer like the plug-in's, current on this thread.
class Stage {
public:
  explicit Stage(const render::Options& options) {
    port_.kind = kHalvenorPortOffscreen;
    port_.bounds = {0, 0, static_cast<std::int16_t>(options.height),
                    static_cast<std::int16_t>(options.width)};
    const GLint attributes[] = {
        AGL_RGBA, AGL_DOUBLEBUFFER,   AGL_RED_SIZE,    8,       AGL_ALPHA_SIZE, 8, AGL_DEPTH_SIZE,
        24,       AGL_CLOSEST_POLICY, AGL_NO_RECOVERY, AGL_NONE};
    const AGLPixelFormat format = aglChoosePixelFormat(nullptr, 0, attributes);
    context_ = aglCreateContext(format, nullptr);
    aglDestroyPixelFormat(format);
    aglSetDrawable(context_, &port_);
    MakeCurrent();
    glEnable(GL_BLEND);
    std::int16_t family = 0;
    GetFNum(reinterpret_cast<const unsigned char*>("\x09Helvetica"), &family);
    // A fresh context's first names, as in the plug-in's.
    aglUseFont(context_, family, 0, kFontSize, 0, kGlyphs, static_cast<GLint>(glGenLists(kGlyphs)));
  }
  ~Stage() {
    aglSetCurrentContext(nullptr);
    aglDestroyContext(context_);
  }
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  /// To be called after each message: the plug-in lets go of whatever is current.
  void MakeCurrent() const {
    if (!aglSetCurrentContext(context_)) Fail("no OpenGL");
  }

  static void Draw(const GlTape& tape) {
    tape.Play();
    glFinish();
  }

  /// The picture, top row first.
  [[nodiscard]] std::vector<std::uint8_t> Picture() const {
    const std::size_t rowBytes = std::size_t{4} * static_cast<std::size_t>(port_.bounds.right);
    std::vector<std::uint8_t> picture;
    std::vector<std::uint8_t> row(rowBytes);
    for (int y = port_.bounds.bottom - 1; y >= 0; --y) {
      glReadPixels(0, y, port_.bounds.right, 1, GL_RGBA, GL_UNSIGNED_BYTE, row.data());
      picture.insert(picture.end(), row.begin(), row.end());
    }
    return picture;
  }

private:
  HalvenorPort port_{};
  AGLContext context_ = nullptr;
};

class Comparison {
public:
  explicit Comparison(const render::Options& options) : stage_(options) {
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
    stage_.MakeCurrent();
    Stage::Draw(tape_);
    if (stage_.Picture() != picture_) Fail("the replay shows another picture");

    std::vector<Pair> pairs;
    for (int i = 0; i < frames; ++i) {
      const Times whole = Measure([this] { DrawFrame(); });
      pairs.push_back({whole, Measure([this] { Stage::Draw(tape_); })});
    }
    Print(second, pairs);
  }

private:
  void DrawFrame() {
    std::string error;
    time_ += kFrameInterval;
    if (!show_->Draw(time_, picture_, error)) Fail(error);
  }

  void Print(int second, const std::vector<Pair>& pairs) const {
    const auto median = [&](auto of) {
      std::vector<double> values;
      values.reserve(pairs.size());
      for (const Pair& pair : pairs)
        values.push_back(of(pair));
      return Median(std::move(values));
    };
    std::printf("%4d s %8zu", second, tape_.Length());
    for (const auto part : {&Times::elapsed, &Times::processor}) {
      std::printf("  %10.3f %10.3f %8.3f",
                  median([=](const Pair& pair) { return pair.whole.*part; }),
                  median([=](const Pair& pair) { return pair.driver.*part; }),
                  median([=](const Pair& pair) { return pair.whole.*part / (pair.driver.*part); }));
    }
    std::printf("\n");
  }

  Stage stage_;
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
  halvenor::bench::Comparison comparison({});
  std::printf("medians, ms: %35s  %30s\n  at    calls  %10s %10s %8s  %10s %10s %8s\n",
              "time that passed", "processor time of all threads", "frame", "driver", "ratio",
              "frame", "driver", "ratio");
  for (const int second : {10, 20, 30, 40, 50})
    comparison.At(second, frames);
}
