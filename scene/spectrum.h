// The picture's core: the smoothed spectrum as two polylines, their drawing and their labels.
#pragma once

#include "protocol/visual_plugin_data.h"

#include <array>
#include <cstdint>

namespace halvenor {

/// Turns the spectrum of the state record into vertices and draws them. All operations run inside
/// a frame with the plug-in's lock held; those that draw need a current GL context.
class Spectrum {
public:
  static constexpr int kVerticesPerChannel = 512;

  /// x in -1..1 along the frequency axis, y the magnitude, about 0..1.
  struct Vertex {
    float x;
    float y;
  };

  Spectrum();

  /// Computes the vertices for this frame and remembers `data`, which must outlive the frame.
  void PreProcess(VisualPluginData* data);

  /// Draws the lines and the filled band with the caller's target and blending, and advances the
  /// color cycle when it is on. Leaves texturing on, the matrix at identity and the client vertex
  /// array enabled on the vertices. Needs a `PreProcess` before it.
  void Render() const;

  /// Draws the frequency labels and ticks in the current color, with the font's current size.
  /// Needs a `PreProcess` before it.
  void DrawText() const;

  /// Axis value of `bin` (0 to 511), and back (the larger root for the blended mapping), under the
  /// record's `frequencyScale`.
  [[nodiscard]] float frequencyToScreen(int bin) const;
  [[nodiscard]] float screenToFrequency(float position) const;

  /// Magnitude of `row` (512 bytes) at a fractional bin `position`: a cubic Bezier between the
  /// neighboring bins, whose slopes follow the bins beyond. Indices are clamped to 0..511.
  static float MagnitudeAtPoint(float position, const std::uint8_t* row);

  /// The vertices of this frame: channel 0 from 0, channel 1 from 512.
  [[nodiscard]] const std::array<Vertex, 2 * kVerticesPerChannel>& Vertices() const {
    return vertices;
  }
  /// How many vertices each channel has, at most 505.
  [[nodiscard]] std::int32_t NumVertices() const { return numVertices; }

private:
  struct LineStyle;

  /// How many bins are shown: 0 to 511, whatever the record holds.
  [[nodiscard]] int ActiveBins() const;
  [[nodiscard]] float BinPosition(int bin, float span) const;
  void AddVertex(float x, float magnitude0, float magnitude1);
  void FillBetween(int bin, float span);

  void DrawPasses(const LineStyle& style) const;
  void DrawBand(int channel, const LineStyle& style) const;
  void LoadLayout() const;

  std::array<Vertex, 2 * kVerticesPerChannel> vertices{};
  std::int32_t numVertices = 0;
  std::array<float, 512> sqrtTable;
  std::array<float, 512> logTable;
  std::array<float, 512> blendTable;
  VisualPluginData* pluginData = nullptr;
};

} // namespace halvenor
