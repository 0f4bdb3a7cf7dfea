// Upright rectangles: plain ones, textured ones, and those that programs color.
#include "raster/programs/taps.h"
#include "raster/recorder.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>

namespace halvenor::raster {
namespace {

// What each textured quad loses that is added to a picture which is faded and added again: half a
// step of ten bits, as buffers of that depth do by cutting. So trails end in exact black.
constexpr int kTrailLoss = 16;

// How many pictures wait for each other at most.
constexpr int kMostDepth = 8;

constexpr float kSubpixels = 256.0F;

float Snap(float value) {
  return std::floor(value * kSubpixels + 0.5F) / kSubpixels;
}

int FirstPixel(float at) {
  constexpr float kLimit = 2.0F * kMaxSize;
  return static_cast<int>(std::ceil(std::clamp(Snap(at), -kLimit, kLimit) - 0.5F));
}

/// Along one axis: from where to where, with which texture coordinates.
struct Side {
  float from;
  float to;
  float textureFrom;
  float textureTo;

  [[nodiscard]] double Step(int texels) const {
    return (static_cast<double>(textureTo) - textureFrom) * texels /
           (static_cast<double>(to) - from);
  }
  /// Texel position at the middle of a pixel.
  [[nodiscard]] double At(int pixel, int texels) const {
    return static_cast<double>(textureFrom) * texels + (pixel + 0.5 - from) * Step(texels);
  }
};

struct Geometry {
  Box box;
  Side across;
  Side up;
};

Geometry GeometryOf(const State& state, const Surface& surface,
                    const std::array<PixelVertex, 4>& c) {
  Geometry g{{}, {c[0].x, c[1].x, c[0].s, c[1].s}, {c[0].y, c[2].y, c[0].t, c[2].t}};
  for (Side* const side : {&g.across, &g.up})
    if (side->from > side->to) *side = {side->to, side->from, side->textureTo, side->textureFrom};
  const Box view = ViewportBox(state, surface.width, surface.height);
  g.box = {std::max(view.left, FirstPixel(g.across.from)),
           std::max(view.bottom, FirstPixel(g.up.from)),
           std::min(view.right, FirstPixel(g.across.to)), std::min(view.top, FirstPixel(g.up.to))};
  return g;
}

int ToFactor(double share) {
  return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * kFactorOne));
}

class QuadRecorder {
public:
  QuadRecorder(State& state, Surface& surface, const Geometry& geometry, const Vec4& color)
      : state_(state), surface_(surface), texture_(*state.texture), geometry_(geometry),
        blend_(BlendOf(state)) {
    for (std::size_t i = 0; i < color.size(); ++i)
      color_[i] = Unit(color[i]);
  }

  void Record() {
    const bool hasTexture = texture_.IsComplete();
    if (state_.fragmentPrograms) {
      if (!state_.fragmentProgram->program) return state_.Fail(GL_INVALID_OPERATION);
      RecordProgram(hasTexture);
    } else if (state_.textures && hasTexture) {
      RecordTextured();
    } else {
      RecordFill();
    }
  }

private:
  [[nodiscard]] bool CoversAll() const {
    return geometry_.box == Box{0, 0, surface_.width, surface_.height};
  }

  template <class MadeCommand>
  void Append(MadeCommand command, int sourceAlpha, bool replaces) {
    // What a rectangle over all of it replaces need not be drawn.
    if (replaces && CoversAll() && !surface_.Begin({0, 0, 0, sourceAlpha == kOne ? kOne : 0}))
      return state_.Fail(GL_OUT_OF_MEMORY);
    Version* const version = surface_.Open();
    if (version == nullptr) return state_.Fail(GL_OUT_OF_MEMORY);
    version->opaque = version->opaque && KeepsOpaque(blend_, sourceAlpha);
    version->commands.emplace_back(std::move(command));
  }

  void RecordFill() {
    Fill fill{geometry_.box, blend_, {}};
    for (std::size_t i = 0; i < kPlanes; ++i)
      fill.color[i] = ToComponent(color_[i]);
    Append(fill, ToComponent(color_[3]), blend_ == Blend{});
  }

  [[nodiscard]] Positions PositionsOf(const Side& side, int begin, int end, int texels, GLint wrap,
                                      double shift) const {
    const bool isLinear = filter_ == GL_LINEAR;
    return {end - begin, side.At(begin, texels) + shift * texels, side.Step(texels), texels, wrap,
            isLinear};
  }

  Source SourceOf(const Texture::Level* level, double shiftS, double shiftT) {
    Source source;
    int width = texture_.Width();
    int height = texture_.Height();
    if (level != nullptr) {
      source.level = level->image;
      source.opaque = level->opaque;
      width = level->image->Width();
      height = level->image->Height();
    } else {
      source.version = SampledVersion();
      source.opaque = source.version->opaque;
    }
    const Box& box = geometry_.box;
    source.across = state_.resamplings.Get(
        PositionsOf(geometry_.across, box.left, box.right, width, texture_.wrapS, shiftS));
    source.up = state_.resamplings.Get(
        PositionsOf(geometry_.up, box.bottom, box.top, height, texture_.wrapT, shiftT));
    return source;
  }

  VersionPtr SampledVersion() {
    Surface& shown = *texture_.shown;
    if (!shown.version && !shown.Begin({})) throw std::bad_alloc();
    // Trails that nobody looks at are made of those before them, on and on.
    if (shown.version->depth > kMostDepth && !state_.executor.Draw(*shown.version))
      throw std::bad_alloc();
    return shown.version;
  }

  /// Adds lookups at a distance from the texture coordinates, in the levels that the size asks for.
  void AddSources(Quad& quad, double shiftS, double shiftT, double weight) {
    const double stepX = std::fabs(geometry_.across.Step(texture_.Width()));
    const double stepY = std::fabs(geometry_.up.Step(texture_.Height()));
    const double lambda = std::log2(std::max({stepX, stepY, 1e-6}));
    const bool isSmaller = lambda > 0.0;
    const GLint minFilter = texture_.minFilter;
    filter_ = isSmaller ? minFilter : texture_.magFilter;
    if (filter_ == GL_LINEAR_MIPMAP_NEAREST || filter_ == GL_LINEAR_MIPMAP_LINEAR)
      filter_ = GL_LINEAR;
    if (texture_.shown) return Push(quad, SourceOf(nullptr, shiftS, shiftT), weight);
    const auto last = static_cast<double>(texture_.levels.size() - 1);
    const double level = isSmaller && texture_.UsesMipmaps() ? std::min(lambda, last) : 0.0;
    const bool isBetween =
        minFilter == GL_LINEAR_MIPMAP_LINEAR || minFilter == GL_NEAREST_MIPMAP_LINEAR;
    const double whole = isBetween ? std::floor(level) : std::floor(level + 0.5);
    const double share = isBetween ? level - whole : 0.0;
    const auto number = static_cast<std::size_t>(whole);
    Push(quad, SourceOf(&texture_.levels[number], shiftS, shiftT), weight * (1.0 - share));
    if (share > 0.0)
      Push(quad, SourceOf(&texture_.levels[number + 1], shiftS, shiftT), weight * share);
  }

  static void Push(Quad& quad, Source source, double weight) {
    source.weight = ToFactor(weight);
    quad.sources.push_back(std::move(source));
  }

  [[nodiscard]] static bool IsOpaque(const Quad& quad) {
    return std::all_of(quad.sources.begin(), quad.sources.end(),
                       [](const Source& source) { return source.opaque; });
  }

  void AppendQuad(Quad quad, int sourceAlpha) {
    if (geometry_.box.IsEmpty()) return;
    const bool replaces = blend_ == Blend{};
    const bool adds = blend_ == Blend{GL_SRC_ALPHA, GL_ONE} || blend_ == Blend{GL_ONE, GL_ONE} ||
                      blend_ == Blend{GL_ONE, GL_ONE_MINUS_SRC_COLOR};
    // Added to black, it is what is there afterwards.
    const bool isSimple = quad.sources.size() == 1 && !quad.hasPolynomial && sourceAlpha >= 0;
    if (adds && isSimple && CoversAll() && surface_.version && IsBlack(*surface_.version)) {
      quad.blend = {GL_ONE, GL_ZERO};
      if (blend_.source == GL_SRC_ALPHA) quad.alphaFactor = sourceAlpha;
    }
    for (const Source& source : quad.sources)
      if (source.version) depth_ = std::max(depth_, source.version->depth + 1);
    quad.evenAlpha = sourceAlpha;
    Append(std::move(quad), sourceAlpha, replaces);
    if (surface_.version) surface_.version->depth = std::max(surface_.version->depth, depth_);
  }

  static bool IsBlack(const Version& version) {
    const auto& b = version.background;
    return version.opaque && !version.isDrawn && version.commands.empty() && b[0] == 0 &&
           b[1] == 0 && b[2] == 0;
  }

  void RecordTextured() {
    Quad quad;
    quad.box = geometry_.box;
    quad.blend = blend_;
    AddSources(quad, 0.0, 0.0, 1.0);
    for (std::size_t i = 0; i < kPlanes; ++i)
      quad.scale[i] = ToFactor(color_[i]);
    if (surface_.isShown && blend_ == Blend{GL_SRC_ALPHA, GL_ONE}) quad.loss = kTrailLoss;
    const int sourceAlpha = IsOpaque(quad) ? ToComponent(color_[3]) : -1;
    AppendQuad(std::move(quad), sourceAlpha);
  }

  void RecordProgram(bool hasTexture) {
    const Program* vertex = nullptr;
    if (state_.vertexPrograms) {
      if (!state_.vertexProgram->program) return state_.Fail(GL_INVALID_OPERATION);
      vertex = &*state_.vertexProgram->program;
    }
    const TapsInput input = {{state_.vertexProgram->local.data(), nullptr},
                             {state_.fragmentProgram->local.data(), nullptr},
                             color_};
    const auto taps = FindTaps(vertex, *state_.fragmentProgram->program, input);
    if (!taps) return RecordProgrammed(vertex, hasTexture);
    if (!hasTexture || taps->count == 0) return RecordEven(*taps);
    if (RecordFilter(*taps)) return;
    Quad quad;
    quad.box = geometry_.box;
    quad.blend = blend_;
    quad.hasPolynomial = true;
    for (int i = 0; i < taps->count; ++i) {
      const Tap& tap = taps->taps[static_cast<std::size_t>(i)];
      AddSources(quad, tap.s, tap.t, tap.weight);
    }
    bool alphaIsEven = IsOpaque(quad);
    double alpha = taps->polynomial[3][0];
    for (std::size_t plane = 0; plane < kPlanes; ++plane)
      for (std::size_t power = 0; power < 4; ++power)
        quad.polynomial[plane][power] = ToFactor(taps->polynomial[plane][power]);
    double rest = 0.0;
    for (std::size_t power = 1; power < 4; ++power)
      rest += taps->polynomial[3][power];
    alphaIsEven = alphaIsEven || rest == 0.0;
    AppendQuad(std::move(quad), alphaIsEven ? ToComponent(static_cast<float>(alpha + rest)) : -1);
  }

  /// The four corners' attributes, as they would be over a whole view without a matrix, run through
  /// the vertex program; in between they change evenly.
  void RecordProgrammed(const Program* vertex, bool hasTexture) {
    Programmed command;
    command.box = geometry_.box;
    command.blend = blend_;
    command.program = std::make_shared<const Program>(*state_.fragmentProgram->program);
    const auto& local = state_.fragmentProgram->local;
    command.local.assign(local.begin(), local.end());
    command.wrapS = texture_.wrapS;
    command.wrapT = texture_.wrapT;
    command.isLinear = texture_.magFilter == GL_LINEAR;
    if (hasTexture && texture_.shown) {
      command.source.version = SampledVersion();
      command.source.opaque = command.source.version->opaque;
      depth_ = command.source.version->depth + 1;
    } else if (hasTexture) {
      command.source.level = texture_.levels.front().image;
      command.source.opaque = texture_.levels.front().opaque;
    }
    const Side& across = geometry_.across;
    const Side& up = geometry_.up;
    const Attributes origin =
        CornerOf(vertex, across.from, across.textureFrom, up.from, up.textureFrom);
    const Attributes right = CornerOf(vertex, across.to, across.textureTo, up.from, up.textureFrom);
    const Attributes above = CornerOf(vertex, across.from, across.textureFrom, up.to, up.textureTo);
    const float offX = static_cast<float>(geometry_.box.left) + 0.5F - across.from;
    const float offY = static_cast<float>(geometry_.box.bottom) + 0.5F - up.from;
    for (std::size_t i = 0; i < origin.size(); ++i) {
      for (std::size_t k = 0; k < 4; ++k) {
        const float byX = (right[i][k] - origin[i][k]) / (across.to - across.from);
        const float byY = (above[i][k] - origin[i][k]) / (up.to - up.from);
        command.atFirst[i].start[k] = origin[i][k] + offX * byX + offY * byY;
        command.atFirst[i].step[k] = byX;
        command.stepUp[i][k] = byY;
      }
    }
    const int depth = depth_;
    Append(std::move(command), -1, false);
    if (surface_.version) surface_.version->depth = std::max(surface_.version->depth, depth);
  }

  [[nodiscard]] Attributes CornerOf(const Program* vertex, float x, float s, float y,
                                    float t) const {
    Attributes corner;
    corner.fill({0, 0, 0, 1});
    corner[kColor] = color_;
    corner[kTexCoord0] = {s, t, 0, 1};
    if (vertex != nullptr) {
      const auto inView = [this](float at, std::size_t axis) {
        const auto size = static_cast<float>(state_.viewport[axis + 2]);
        return (at - static_cast<float>(state_.viewport[axis])) / size * 2.0F - 1.0F;
      };
      corner[kPosition] = {inView(x, 0), inView(y, 1), 0, 1};
      corner = RunVertexProgram(*vertex, {state_.vertexProgram->local.data(), nullptr}, corner);
      for (float& channel : corner[kColor])
        channel = Unit(channel);
    }
    corner[kPosition] = {x, y, 0, 1};
    return corner;
  }

  /// Programs find opaque black in a texture that is not complete.
  void RecordEven(const Taps& taps) {
    for (std::size_t i = 0; i < kPlanes; ++i) {
      const Polynomial& p = taps.polynomial[i];
      const bool isOne = i == 3 && taps.count != 0;
      color_[i] = isOne ? std::accumulate(p.begin(), p.end(), 0.0F) : p[0];
    }
    RecordFill();
  }

  static bool IsPlain(const Taps& taps) {
    return std::all_of(taps.polynomial.begin(), taps.polynomial.end(), [](const Polynomial& p) {
      return p == Polynomial{0.0F, 1.0F, 0.0F, 0.0F};
    });
  }

  /// A sum of pixels at whole distances, where every pixel shows one texel.
  bool RecordFilter(const Taps& taps) {
    if (!IsPlain(taps) || blend_ != Blend{} || !texture_.shown || texture_.UsesMipmaps() ||
        texture_.minFilter != GL_LINEAR || texture_.magFilter != GL_LINEAR ||
        texture_.wrapS != GL_CLAMP_TO_EDGE || texture_.wrapT != GL_CLAMP_TO_EDGE)
      return false;
    const int width = texture_.Width();
    const int height = texture_.Height();
    const Box& box = geometry_.box;
    const auto offset = [](const Side& side, int begin, int end, int texels) -> std::optional<int> {
      const double start = side.At(begin, texels) - 0.5;
      if (std::fabs(start - std::round(start)) > 1e-3) return std::nullopt;
      if (std::fabs(side.Step(texels) - 1.0) * (end - begin) > 1e-3) return std::nullopt;
      return static_cast<int>(std::lround(start)) - begin;
    };
    const auto offsetX = offset(geometry_.across, box.left, box.right, width);
    const auto offsetY = offset(geometry_.up, box.bottom, box.top, height);
    if (box.IsEmpty() || !offsetX || !offsetY) return false;
    Filter filter;
    filter.box = box;
    filter.offsetX = *offsetX;
    filter.offsetY = *offsetY;
    filter.source.version = SampledVersion();
    filter.source.opaque = filter.source.version->opaque;
    if (!AddTaps(filter, taps, width, height)) return false;
    depth_ = filter.source.version->depth + 1;
    const bool isOpaque = filter.source.opaque;
    Append(std::move(filter), isOpaque ? kOne : -1, true);
    if (surface_.version) surface_.version->depth = std::max(surface_.version->depth, depth_);
    return true;
  }

  /// False when they reach further, or are more, than the kernel takes.
  static bool AddTaps(Filter& filter, const Taps& taps, int width, int height) {
    std::map<std::pair<int, int>, double> sums; // by dy, dx
    for (int i = 0; i < taps.count; ++i) {
      const Tap& tap = taps.taps[static_cast<std::size_t>(i)];
      const double u = static_cast<double>(tap.s) * width;
      const double v = static_cast<double>(tap.t) * height;
      if (!(std::fabs(u) < Filter::kReach - 1 && std::fabs(v) < kMaxSize)) return false;
      const int x = static_cast<int>(std::floor(u));
      const int y = static_cast<int>(std::floor(v));
      const double right = u - x;
      const double up = v - y;
      sums[{y, x}] += (1.0 - right) * (1.0 - up) * tap.weight;
      sums[{y, x + 1}] += right * (1.0 - up) * tap.weight;
      sums[{y + 1, x}] += (1.0 - right) * up * tap.weight;
      sums[{y + 1, x + 1}] += right * up * tap.weight;
    }
    double all = 0.0;
    int given = 0;
    for (const auto& [place, weight] : sums) {
      all += weight;
      const int factor = ToFactor(weight);
      if (factor == 0) continue;
      filter.taps.push_back({place.second, place.first, factor});
      given += factor;
    }
    if (filter.taps.empty() || filter.taps.size() > Filter::kMaxTaps) return false;
    // A plain field stays as it is: the largest weight takes the rounding of the others.
    std::max_element(filter.taps.begin(), filter.taps.end(), [](const auto& a, const auto& b) {
      return a.weight < b.weight;
    })->weight += ToFactor(all) - given;
    return true;
  }

  State& state_;
  Surface& surface_;
  Texture& texture_;
  Geometry geometry_;
  Blend blend_;
  Vec4 color_{};
  GLint filter_ = GL_LINEAR;
  int depth_ = 0;
};

} // namespace

void RecordQuad(State& state, Surface& surface, const std::array<PixelVertex, 4>& corners) {
  const Geometry geometry = GeometryOf(state, surface, corners);
  if (geometry.across.from == geometry.across.to || geometry.up.from == geometry.up.to) return;
  if (geometry.box.IsEmpty()) return;
  QuadRecorder(state, surface, geometry, corners[0].color).Record();
}

} // namespace halvenor::raster
