#include "platform/carbon.h"

#include "platform/clock.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <thread>

namespace {

constexpr double kFullScale = 65535.0; // of a component, a saturation, a lightness
constexpr double kFullTurn = 65536.0;  // of a hue, which wraps around
constexpr double kSextants = 6.0;

std::uint16_t Rounded(double value) {
  return static_cast<std::uint16_t>(std::lround(value));
}

// The chroma that full saturation has at `lightness`: an even number.
double LargestChroma(int lightness) {
  return kFullScale - std::abs(2.0 * lightness - kFullScale);
}

} // namespace

void* NewPtrClear(int32_t size) {
  if (size < 0) return nullptr;
  return std::calloc(1, std::max(static_cast<std::size_t>(size), std::size_t{1}));
}

void DisposePtr(void* block) {
  std::free(block);
}

AbsoluteTime UpTime(void) {
  return halvenor::clock::Now();
}

Duration AbsoluteDeltaToDuration(AbsoluteTime later, AbsoluteTime earlier) {
  if (later <= earlier) return 0;
  constexpr std::uint64_t kLargest = std::numeric_limits<Duration>::max();
  // Rounded up: frames of 16,666.7 microseconds come to hardly less than 60 a second, and three of
  // them to no less than a twentieth of a second. Rounded down, or to nearest, they would.
  const std::uint64_t microseconds = (later - earlier + 999) / 1000;
  if (microseconds <= kLargest) return -static_cast<Duration>(microseconds);
  return static_cast<Duration>(std::min(microseconds / 1000, kLargest));
}

void YieldToAnyThread(void) {
  std::this_thread::yield();
}

void RGB2HSL(const RGBColor* rgb, HSLColor* hsl) {
  const int red = rgb->red;
  const int green = rgb->green;
  const int blue = rgb->blue;
  const int largest = std::max({red, green, blue});
  const int smallest = std::min({red, green, blue});
  const double chroma = largest - smallest;
  hsl->lightness = static_cast<std::uint16_t>((largest + smallest + 1) / 2);
  if (chroma == 0) {
    hsl->hue = 0;
    hsl->saturation = 0;
    return;
  }
  double sextant = 0; // red at 0, green at 2, blue at 4
  if (largest == red) {
    sextant = (green - blue) / chroma;
  } else if (largest == green) {
    sextant = 2 + (blue - red) / chroma;
  } else {
    sextant = 4 + (red - green) / chroma;
  }
  // A hue that rounds to a full turn, or lies below 0, wraps around.
  hsl->hue = static_cast<std::uint16_t>(std::lround(sextant / kSextants * kFullTurn));
  hsl->saturation = Rounded(chroma / std::max(LargestChroma(hsl->lightness), chroma) * kFullScale);
}

void HSL2RGB(const HSLColor* hsl, RGBColor* rgb) {
  const int lightness = hsl->lightness;
  const double chroma = hsl->saturation / kFullScale * LargestChroma(lightness);
  // The two ends lie evenly about the lightness even after rounding, so that turning a color
  // again and again never makes it lighter or darker.
  const int reach = static_cast<int>(std::lround(chroma / 2));
  const int largest = lightness + reach;
  const int smallest = lightness - reach;

  const double turn = hsl->hue / kFullTurn * kSextants;
  const auto sextant = static_cast<int>(turn);
  const double along = turn - sextant;
  const double rising = (sextant % 2 == 0) ? along : 1 - along;
  const std::uint16_t high = static_cast<std::uint16_t>(largest);
  const std::uint16_t low = static_cast<std::uint16_t>(smallest);
  const std::uint16_t middle = Rounded(smallest + (largest - smallest) * rising);
  switch (sextant) {
  case 0:
    *rgb = {high, middle, low};
    break;
  case 1:
    *rgb = {middle, high, low};
    break;
  case 2:
    *rgb = {low, high, middle};
    break;
  case 3:
    *rgb = {low, middle, high};
    break;
  case 4:
    *rgb = {middle, low, high};
    break;
  default:
    *rgb = {high, low, middle};
    break;
  }
}
