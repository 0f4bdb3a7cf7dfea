// Turns primitives into commands of the bound target.
#pragma once

#include "raster/state.h"

#include <GL/gl.h>

#include <span>

namespace halvenor::raster {

/// Each records nothing when nothing is bound. They fail with GL_OUT_OF_MEMORY.
void RecordClear(State& state);
void RecordPrimitives(State& state, GLenum mode, std::span<const Vertex> vertices);
void RecordBitmap(State& state, const BitmapList& list);

// Used by the above; `version` is what the target records into.

/// An axis-aligned rectangle, whose corners are left bottom, right bottom, left top, right top,
/// with the texture and the programs of the state.
void RecordQuad(State& state, Surface& surface, const std::array<PixelVertex, 4>& corners);
void RecordTriangle(State& state, Version& version, const PixelVertex& a, const PixelVertex& b,
                    const PixelVertex& c);
/// Adds to the version's last command if that is one of segments with this blending within
/// `box`; else begins one.
Segments& OpenSegments(State& state, Version& version, const Box& box);
std::uint32_t AddColor(Segments& segments, const Vec4& color);
void AddSegment(Version& version, Segments& segments, const Segment& segment);
/// The viewport within the target.
Box ViewportBox(const State& state, int width, int height);
/// What the state blends by; (GL_ONE, GL_ZERO) while blending is off.
Blend BlendOf(const State& state);

/// Records lines, in one go, into a version that nobody else adds to meanwhile.
class LineRecorder {
public:
  LineRecorder(State& state, Version& version);
  void Record(const PixelVertex& from, const PixelVertex& to);

private:
  void Add(Segment& segment, const Vec4& color);

  State& state_;
  Version& version_;
  Box box_;
  Segments* segments_ = nullptr; ///< from the first segment on
  bool hasColor_ = false;
  Vec4 color_{};
  std::uint32_t colorNumber_ = 0;
};

/// Clamped to 0..1; NaN is 0.
float Unit(float value);
int ToComponent(float value);
/// Whether alpha of one stays one everywhere under a source with this alpha (-1: varying).
bool KeepsOpaque(const Blend& blend, int sourceAlpha);

} // namespace halvenor::raster
