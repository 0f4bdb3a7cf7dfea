#include "audio/analyzer.h"

#include <gst/fft/gstfftf32.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <utility>

namespace halvenor {

namespace {

constexpr std::size_t kWindow = 2048;
constexpr std::size_t kPoints = 4096;
constexpr std::size_t kPointsPerBin = 8;
constexpr std::size_t kHalfBin = kPointsPerBin / 2;
constexpr std::size_t kBins = 256;
constexpr std::size_t kHop = kFramesPerRecord / 3;

// What the windows of a record see, and how much of that lies before the record.
constexpr std::size_t kCapacity = 2 * kHop + kWindow;
constexpr std::size_t Margin(AnalysisWindows windows) {
  return windows == AnalysisWindows::Past ? kCapacity - kFramesPerRecord : (kWindow - kHop) / 2;
}

constexpr float kRangeDecibels = 80;

static_assert(kFramesPerRecord % 3 == 0);
static_assert(kPointsPerBin * 512 == kPoints, "bins are 44100 / 512 Hz apart");

struct FreeFft {
  void operator()(GstFFTF32* fft) const { gst_fft_f32_free(fft); }
};

std::uint8_t ToByte(float value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

/// The byte of a magnitude, 1 for a full-scale sine.
std::uint8_t Loudness(float magnitude) {
  if (!(magnitude > 0)) return 0;
  const float share = (20 * std::log10(magnitude) + kRangeDecibels) / kRangeDecibels;
  return share > 0 ? ToByte(255 * share * share) : 0;
}

struct Peak {
  float point;
  float magnitude;
};

/// The summit of the parabola through three neighboring magnitudes of which the middle one, at
/// `point`, is the highest.
Peak Summit(std::size_t point, float before, float at, float after) {
  const float bend = before - 2 * at + after;
  const float offset = bend < 0 ? 0.5F * (before - after) / bend : 0;
  return {static_cast<float>(point) + offset, at - 0.25F * (before - after) * offset};
}

} // namespace

struct Analyzer::Transform {
  std::unique_ptr<GstFFTF32, FreeFft> fft{gst_fft_f32_new(kPoints, FALSE)};
  std::array<float, kWindow> window{};
  std::array<float, kPoints> time{};
  std::array<GstFFTF32Complex, kPoints / 2 + 1> frequency{};
  std::array<float, kPoints / 2 + 1> magnitudes{};

  const std::size_t margin;                 // frames that lie before the record
  std::array<float, 2 * kCapacity> sound{}; // left and right alternating
  std::size_t filled = margin;              // frames
  AnalyzedSound result{};

  explicit Transform(AnalysisWindows windows);
  void FindMagnitudes(std::size_t channel);
  void FindSpectrum(std::uint8_t* bins) const;
  void FindWaveform(std::size_t channel, std::uint8_t* bytes) const;
};

Analyzer::Transform::Transform(AnalysisWindows windows) : margin(Margin(windows)) {
  // Scaled so that the peak of a full-scale sine comes out as 1.
  for (std::size_t i = 0; i < kWindow; ++i) {
    const double phase = 2 * std::numbers::pi * (static_cast<double>(i) + 0.5) / kWindow;
    window[i] = static_cast<float>((1 - std::cos(phase)) * 2 / kWindow);
  }
  result.record.numWaveformChannels = kAudioChannels;
  result.record.numSpectrumChannels = kAudioChannels;
}

/// Leaves in `magnitudes` each point's highest magnitude over the record's windows.
void Analyzer::Transform::FindMagnitudes(std::size_t channel) {
  magnitudes.fill(0);
  for (std::size_t start = 0; start <= 2 * kHop; start += kHop) {
    for (std::size_t i = 0; i < kWindow; ++i)
      time[i] = sound[2 * (start + i) + channel] * window[i];
    gst_fft_f32_fft(fft.get(), time.data(), frequency.data());
    for (std::size_t i = 0; i < magnitudes.size(); ++i) {
      const auto [re, im] = frequency[i];
      magnitudes[i] = std::max(magnitudes[i], re * re + im * im);
    }
  }
  for (float& magnitude : magnitudes)
    magnitude = std::sqrt(magnitude);
}

void Analyzer::Transform::FindSpectrum(std::uint8_t* bins) const {
  std::array<float, kBins> levels{};
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    const std::size_t center = bin * kPointsPerBin;
    const auto first =
        magnitudes.begin() + static_cast<std::ptrdiff_t>(center < kHalfBin ? 0 : center - kHalfBin);
    const auto last = magnitudes.begin() + static_cast<std::ptrdiff_t>(center + kHalfBin + 1);
    levels[bin] = *std::max_element(first, last);
  }
  // A summit near the border of two bins belongs to one of them, though both share a point there.
  for (std::size_t i = 1; i + 1 < magnitudes.size(); ++i) {
    if (magnitudes[i] < magnitudes[i - 1] || magnitudes[i] < magnitudes[i + 1]) continue;
    const Peak peak = Summit(i, magnitudes[i - 1], magnitudes[i], magnitudes[i + 1]);
    const auto bin = static_cast<std::size_t>(std::lround(peak.point / kPointsPerBin));
    if (bin < kBins) levels[bin] = std::max(levels[bin], peak.magnitude);
  }
  std::transform(levels.begin(), levels.end(), bins, Loudness);
}

/// Each byte is the mean of the frames it stands for.
void Analyzer::Transform::FindWaveform(std::size_t channel, std::uint8_t* bytes) const {
  constexpr auto kBytes = static_cast<std::size_t>(kSamplesPerChannel);
  for (std::size_t i = 0; i < kBytes; ++i) {
    const std::size_t first = i * kFramesPerRecord / kBytes;
    const std::size_t last = (i + 1) * kFramesPerRecord / kBytes;
    float sum = 0;
    for (std::size_t frame = first; frame < last; ++frame)
      sum += sound[2 * (margin + frame) + channel];
    bytes[i] = ToByte(128 + 128 * sum / static_cast<float>(last - first));
  }
}

Analyzer::Analyzer(Receiver receiver, AnalysisWindows windows)
    : receiver_(std::move(receiver)), transform_(std::make_unique<Transform>(windows)) {}

Analyzer::~Analyzer() = default;

void Analyzer::Push(std::span<const float> sound) {
  for (std::size_t i = 0; i + 1 < sound.size(); i += 2)
    Take(sound[i], sound[i + 1]);
}

void Analyzer::Take(float left, float right) {
  const auto clean = [](float value) {
    return std::isnan(value) ? 0.0F : std::clamp(value, -1.0F, 1.0F);
  };
  Transform& t = *transform_;
  t.sound[2 * t.filled] = clean(left);
  t.sound[2 * t.filled + 1] = clean(right);
  if (++t.filled == kCapacity) AnalyzeRecord(kFramesPerRecord);
}

void Analyzer::AnalyzeRecord(std::size_t frames) {
  Transform& t = *transform_;
  for (std::size_t channel = 0; channel < kAudioChannels; ++channel) {
    t.FindMagnitudes(channel);
    t.FindSpectrum(t.result.record.spectrum[channel]);
    t.FindWaveform(channel, t.result.record.waveform[channel]);
  }
  t.result.sound = {t.sound.data() + 2 * t.margin, 2 * frames};
  receiver_(t.result);

  ++t.result.index;
  std::copy(t.sound.begin() + 2 * kFramesPerRecord, t.sound.end(), t.sound.begin());
  t.filled = kCapacity - kFramesPerRecord;
}

void Analyzer::Flush() {
  Transform& t = *transform_;
  for (std::size_t pushed = t.filled; pushed > t.margin;) {
    std::fill(t.sound.begin() + static_cast<std::ptrdiff_t>(2 * pushed), t.sound.end(), 0.0F);
    AnalyzeRecord(std::min(kFramesPerRecord, pushed - t.margin));
    pushed -= std::min(pushed, kFramesPerRecord);
  }
  Reset();
}

void Analyzer::Reset() {
  Transform& t = *transform_;
  t.sound.fill(0);
  t.filled = t.margin;
  t.result.index = 0;
}

const RenderVisualData& SilentRecord() {
  static const RenderVisualData record = [] {
    RenderVisualData silent{};
    silent.numWaveformChannels = silent.numSpectrumChannels = kAudioChannels;
    for (auto& channel : silent.waveform)
      std::ranges::fill(channel, std::uint8_t{128});
    return silent;
  }();
  return record;
}

float MeterLevel(float peak) {
  constexpr float kMeterDecibels = 60;
  if (!(peak > 0)) return 0;
  return std::clamp(1 + 20 * std::log10(peak) / kMeterDecibels, 0.0F, 1.0F);
}

float MeterLevel(const RenderVisualData& record) {
  constexpr int kZero = 128;
  int peak = 0;
  for (const auto& channel : record.waveform)
    for (const std::uint8_t value : channel)
      peak = std::max(peak, std::abs(value - kZero));
  return MeterLevel(static_cast<float>(peak) / kZero);
}

} // namespace halvenor
