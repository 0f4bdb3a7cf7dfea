// Triangles of changing color, as runs of pixels along their longer side.
#include "raster/recorder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace halvenor::raster {
namespace {

constexpr float kSubpixels = 256.0F;
constexpr int kColorBits = 15; // behind the point of a gradient's colors

float Snap(float value) {
  return std::floor(value * kSubpixels + 0.5F) / kSubpixels;
}

/// A corner: u across the runs, v along them.
struct Corner {
  double u;
  double v;
};

/// The first pixel whose middle is not before `at`.
int FirstPixel(double at) {
  return static_cast<int>(std::ceil(std::clamp(at, -2.0 * kMaxSize, 2.0 * kMaxSize) - 0.5));
}

/// The plane through the corners' values of one component.
struct Plane {
  double atOrigin;
  double byU;
  double byV;

  Plane(const std::array<Corner, 3>& c, double area, double a, double b, double d) {
    byU = ((b - a) * (c[2].v - c[0].v) - (d - a) * (c[1].v - c[0].v)) / area;
    byV = ((d - a) * (c[1].u - c[0].u) - (b - a) * (c[2].u - c[0].u)) / area;
    atOrigin = a - byU * c[0].u - byV * c[0].v;
  }
  [[nodiscard]] double At(double u, double v) const { return atOrigin + byU * u + byV * v; }
};

/// A component between 0 and one, with half a step for rounding.
std::int32_t ToFixed(double component) {
  return static_cast<std::int32_t>(std::clamp(component, 0.0, 1.0) * kOne * (1 << kColorBits)) +
         (1 << (kColorBits - 1));
}

Gradients& OpenGradients(Version& version, const Blend& blend, bool adds) {
  if (!version.commands.empty())
    if (auto* const last = std::get_if<Gradients>(&version.commands.back()))
      if (last->blend == blend && last->adds == adds) return *last;
  Gradients gradients;
  gradients.blend = blend;
  gradients.adds = adds;
  gradients.bands.resize(static_cast<std::size_t>((version.height + kBandRows - 1) / kBandRows));
  gradients.used.resize(static_cast<std::size_t>(version.width));
  return std::get<Gradients>(version.commands.emplace_back(std::move(gradients)));
}

Sheet MakeSheet(int width) {
  Sheet sheet;
  const auto blocks = static_cast<std::size_t>((width + Sheet::kBlock - 1) / Sheet::kBlock);
  const std::size_t columns = blocks * Sheet::kBlock;
  sheet.first.resize(columns);
  sheet.end.resize(columns);
  for (std::size_t plane = 0; plane < 3; ++plane) {
    sheet.color[plane].resize(columns);
    sheet.slope[plane].resize(columns);
  }
  sheet.blockFirst.resize(blocks, std::numeric_limits<std::int32_t>::max());
  sheet.blockEnd.resize(blocks);
  return sheet;
}

void AddToSheet(Version& version, Gradients& gradients, const Gradient& gradient) {
  const auto column = static_cast<std::size_t>(gradient.position);
  const std::size_t number = gradients.used[column]++;
  if (number == gradients.sheets.size()) {
    gradients.sheets.push_back(MakeSheet(version.width));
    version.cost += static_cast<std::size_t>(version.width) * 2;
  }
  Sheet& sheet = gradients.sheets[number];
  sheet.first[column] = gradient.first;
  sheet.end[column] = gradient.end;
  for (std::size_t plane = 0; plane < 3; ++plane) {
    const auto slope = static_cast<std::uint32_t>(gradient.slope[plane]);
    sheet.color[plane][column] =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(gradient.color[plane]) -
                                  slope * static_cast<std::uint32_t>(gradient.first));
    sheet.slope[plane][column] = gradient.slope[plane];
  }
  std::int32_t& first = sheet.blockFirst[column / Sheet::kBlock];
  std::int32_t& end = sheet.blockEnd[column / Sheet::kBlock];
  first = std::min<std::int32_t>(first, gradient.first);
  end = std::max<std::int32_t>(end, gradient.end);
}

// More sheets than this are for triangles that lie over each other, and few columns of each.
constexpr std::uint16_t kMostSheets = 16;

void Add(Version& version, Gradients& gradients, const Gradient& gradient) {
  if (gradients.adds && gradient.upward != 0 &&
      gradients.used[static_cast<std::size_t>(gradient.position)] < kMostSheets)
    return AddToSheet(version, gradients, gradient);
  const int bottom = gradient.upward != 0 ? gradient.first : gradient.position;
  const int top = gradient.upward != 0 ? gradient.end : gradient.position + 1;
  for (int band = bottom / kBandRows; band * kBandRows < top; ++band) {
    gradients.bands[static_cast<std::size_t>(band)].push_back(gradient);
    constexpr std::size_t kBytes = sizeof(Gradient);
    constexpr std::size_t kUnit = sizeof(Segment); // costs count segments
    version.cost += kBytes / kUnit;
  }
}

} // namespace

void RecordTriangle(State& state, Version& version, const PixelVertex& a, const PixelVertex& b,
                    const PixelVertex& c) {
  const PixelVertex* const vertices[] = {&a, &b, &c};
  std::array<Corner, 3> corners;
  for (std::size_t i = 0; i < 3; ++i)
    corners[i] = {Snap(vertices[i]->x), Snap(vertices[i]->y)};
  const auto [left, right] = std::minmax({corners[0].u, corners[1].u, corners[2].u});
  const auto [bottom, top] = std::minmax({corners[0].v, corners[1].v, corners[2].v});
  const bool upward = top - bottom > right - left;
  if (!upward)
    for (Corner& corner : corners)
      std::swap(corner.u, corner.v);
  const double area = (corners[1].u - corners[0].u) * (corners[2].v - corners[0].v) -
                      (corners[2].u - corners[0].u) * (corners[1].v - corners[0].v);
  if (area == 0.0) return;

  // One alpha: the products with it are as plane as the colors.
  const Blend blend = BlendOf(state);
  const float alpha = Unit(a.color[3]);
  const bool isEven = alpha == Unit(b.color[3]) && alpha == Unit(c.color[3]);
  version.opaque = version.opaque && KeepsOpaque(blend, isEven ? ToComponent(alpha) : -1);
  float factor = 1.0F;
  const bool adds = isEven && version.opaque && blend == Blend{GL_SRC_ALPHA, GL_ONE};
  if (adds) factor = alpha;
  std::array<Plane, kPlanes> planes = {
      Plane(corners, area, Unit(a.color[0]) * factor, Unit(b.color[0]) * factor,
            Unit(c.color[0]) * factor),
      Plane(corners, area, Unit(a.color[1]) * factor, Unit(b.color[1]) * factor,
            Unit(c.color[1]) * factor),
      Plane(corners, area, Unit(a.color[2]) * factor, Unit(b.color[2]) * factor,
            Unit(c.color[2]) * factor),
      Plane(corners, area, Unit(a.color[3]), Unit(b.color[3]), Unit(c.color[3]))};

  std::sort(corners.begin(), corners.end(),
            [](const Corner& one, const Corner& other) { return one.u < other.u; });
  const Box box = ViewportBox(state, version.width, version.height);
  const int begin = std::max(FirstPixel(corners[0].u), upward ? box.left : box.bottom);
  const int endPosition = std::min(FirstPixel(corners[2].u), upward ? box.right : box.top);
  const int low = upward ? box.bottom : box.left;
  const int high = upward ? box.top : box.right;
  Gradients& gradients = OpenGradients(version, blend, adds);
  for (int position = begin; position < endPosition; ++position) {
    const double u = position + 0.5;
    const auto along = [u](const Corner& from, const Corner& to) {
      return to.u == from.u ? from.v : from.v + (u - from.u) * (to.v - from.v) / (to.u - from.u);
    };
    const double one = along(corners[0], corners[2]);
    const double other =
        u < corners[1].u ? along(corners[0], corners[1]) : along(corners[1], corners[2]);
    const int first = std::max(FirstPixel(std::min(one, other)), low);
    const int last = std::min(FirstPixel(std::max(one, other)), high);
    if (first >= last) continue;
    Gradient gradient;
    gradient.position = static_cast<std::int16_t>(position);
    gradient.first = static_cast<std::int16_t>(first);
    gradient.end = static_cast<std::int16_t>(last);
    gradient.upward = upward ? 1 : 0;
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
      gradient.color[plane] = ToFixed(planes[plane].At(u, first + 0.5));
      const std::int32_t end = ToFixed(planes[plane].At(u, last - 0.5));
      if (last - first > 1)
        gradient.slope[plane] = (end - gradient.color[plane]) / (last - 1 - first);
    }
    Add(version, gradients, gradient);
  }
}

} // namespace halvenor::raster
