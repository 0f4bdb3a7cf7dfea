#include "scene/spectrum.h"

#include "scene/numeric.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr int kLastBin = kSamplesPerChannel - 1;

// Bins further apart than this on the screen get vertices in between.
constexpr float kFillGap = 0.04F;
constexpr float kFillStep = 0.2F;
// Reached by a bin, this many vertices end the line; a bin adds five at most.
constexpr int kEnoughVertices = 500;

constexpr double kMagnitudeScale = 0.00390625; // 1 / 256

float Scaled(float magnitude) {
  return static_cast<float>(magnitude * kMagnitudeScale);
}

} // namespace

Spectrum::Spectrum() {
  for (int i = 0; i < kSamplesPerChannel; ++i) {
    const auto slot = static_cast<std::size_t>(i);
    sqrtTable[slot] = static_cast<float>(std::sqrt(static_cast<double>(i)));
    logTable[slot] = static_cast<float>(std::log10(static_cast<double>(i + 1)));
    blendTable[slot] = static_cast<float>(0.3 * i + std::sqrt(static_cast<double>(i)));
  }
}

float Spectrum::frequencyToScreen(int bin) const {
  const auto slot = static_cast<std::size_t>(bin);
  switch (pluginData->settings.frequencyScale) {
  case 1:
    return sqrtTable[slot];
  case 2:
    return logTable[slot];
  case 3:
    return blendTable[slot];
  default:
    return static_cast<float>(bin);
  }
}

float Spectrum::screenToFrequency(float position) const {
  switch (pluginData->settings.frequencyScale) {
  case 1:
    return position * position;
  case 2:
    return std::pow(10.0F, position);
  case 3: {
    const double y = position;
    const double a = 0.6 * y + 1.0;
    const float root = std::sqrt(static_cast<float>(a * a - 0.36 * y * y));
    return static_cast<float>((a + root) / 0.18);
  }
  default:
    return position;
  }
}

float Spectrum::MagnitudeAtPoint(float position, const std::uint8_t* row) {
  // Clamped first, so that the neighbors' indices cannot overflow.
  const int i = std::clamp(TruncateToInt32(position), -4, kLastBin + 4);
  const auto at = [row](int index) {
    return static_cast<float>(row[std::clamp(index, 0, kLastBin)]);
  };
  const float a = at(i - 1);
  const float p = at(i);
  const float q = at(i + 1);
  const float r = at(i + 2);
  const float t = position - static_cast<float>(std::clamp(i, 0, kLastBin));

  const auto c1 = static_cast<float>(p + 0.25 * (p - a));
  const auto c2 = static_cast<float>(q + 0.25 * (q - r));
  const float rest = 1.0F - t;
  return p * (rest * rest * rest) + 3.0F * c1 * t * (rest * rest) + 3.0F * c2 * (t * t) * rest +
         q * (t * t * t);
}

int Spectrum::ActiveBins() const {
  return std::clamp(TruncateToInt32(pluginData->highestActiveBin), 0, kLastBin);
}

float Spectrum::BinPosition(int bin, float span) const {
  const float axis = frequencyToScreen(bin);
  return (axis + axis) / span - 1.0F;
}

void Spectrum::AddVertex(float x, float magnitude0, float magnitude1) {
  const auto slot = static_cast<std::size_t>(numVertices);
  vertices[slot] = {x, magnitude0};
  vertices[slot + kVerticesPerChannel] = {x, magnitude1};
  ++numVertices;
}

void Spectrum::FillBetween(int bin, float span) {
  const float from = BinPosition(bin, span);
  const float to = BinPosition(bin + 1, span);
  for (float t = 0.0F; t < 1.0F; t += kFillStep) {
    const float position = static_cast<float>(bin) + t;
    AddVertex(from * (1.0F - t) + to * t,
              Scaled(MagnitudeAtPoint(position, pluginData->smoothedSpectrum[0])),
              Scaled(MagnitudeAtPoint(position, pluginData->smoothedSpectrum[1])));
  }
}

void Spectrum::PreProcess(VisualPluginData* data) {
  pluginData = data;
  numVertices = 0;
  const int bins = ActiveBins();
  if (bins == 0) return;
  const float span = frequencyToScreen(bins);

  float previous = -1.0F;
  for (int bin = 0; bin < bins && numVertices <= kEnoughVertices; ++bin) {
    const float x = BinPosition(bin, span);
    if (x - previous > kFillGap) {
      FillBetween(bin, span);
    } else {
      AddVertex(x, Scaled(data->smoothedSpectrum[0][bin]), Scaled(data->smoothedSpectrum[1][bin]));
    }
    previous = x;
  }
}

} // namespace halvenor
