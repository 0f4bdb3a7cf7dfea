#include "gl_calls/gl.h"
#include "platform/carbon.h"
#include "renderer/surface/font_system.h"
#include "scene/c_numbers.h"
#include "scene/numeric.h"
#include "scene/spectrum.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace halvenor {
namespace {

// A stored block may ask for any number of lines and labels; the work for them is bounded. More
// passes than this lie closer together than the rows of the feedback buffer: fewer and brighter
// ones give the same picture.
constexpr float kMostPasses = 128.0F;
// More labels than this cover the axis several times over with their texts, which are wider in a
// larger font: 256 with the font of a first run, but never less than the 100 that the settings
// window offers.
constexpr int kMostLabelPixels = 2304; // font sizes side by side
constexpr int kLabelSizes[] = {9, 23};

// Where on the way outward the filled band ends, and the line passes begin and end their gradient.
constexpr float kBandEdge = 0.495F;
constexpr float kGradientStart = 0.05F;
constexpr float kGradientLength = 0.495F;
constexpr float kFullHue = 65535.0F;
constexpr int kHertzPerBin = 86;

// Accumulated hue offset of the color cycle; its low 16 bits are a fraction of a full turn. Runs
// on for the life of the process.
std::uint32_t cycle = 0;

std::uint16_t ToComponent16(float component) {
  return static_cast<std::uint16_t>(TruncateToInt32(component * kFullHue));
}

float FromComponent16(std::uint16_t component) {
  return static_cast<float>(component / 65535.0);
}

Color TurnHue(const Color& color, std::uint32_t turn) {
  RGBColor rgb = {ToComponent16(color.red), ToComponent16(color.green), ToComponent16(color.blue)};
  HSLColor hsl;
  RGB2HSL(&rgb, &hsl);
  hsl.hue = static_cast<std::uint16_t>(hsl.hue + turn);
  HSL2RGB(&hsl, &rgb);
  return {FromComponent16(rgb.red), FromComponent16(rgb.green), FromComponent16(rgb.blue)};
}

void SetColor(const Color& color, float alpha) {
  glColor4f(color.red, color.green, color.blue, alpha);
}

Color Mix(const Color& inner, const Color& outer, float u) {
  const float rest = 1.0F - u;
  return {inner.red * rest + outer.red * u, inner.green * rest + outer.green * u,
          inner.blue * rest + outer.blue * u};
}

} // namespace

struct Spectrum::LineStyle {
  Color inner;
  Color outer;
  float amplitude;
  float alpha;
};

void Spectrum::LoadLayout() const {
  glLoadIdentity();
  if (pluginData->settings.verticalLayout != 0) glRotatef(90.0F, 0.0F, 0.0F, 1.0F);
}

void Spectrum::DrawPasses(const LineStyle& style) const {
  const float wanted = std::min(pluginData->settings.numLines, std::numeric_limits<float>::max());
  const float lines = std::min(wanted, kMostPasses);
  const auto step = static_cast<float>(0.5 / lines);
  if (!(step > 0.0F)) return; // a negative number of lines, or no number (NaN)
  const float alpha = style.alpha * (wanted / lines);

  for (float s = step * 0.5F; s < 0.5F; s += step) {
    const float shift = style.amplitude * s;
    const float stretch = style.amplitude * std::sqrt(s);
    SetColor(Mix(style.inner, style.outer, (s - kGradientStart) / kGradientLength), alpha);

    LoadLayout();
    glTranslatef(0.0F, shift, 0.0F);
    glScalef(1.0F, stretch, 1.0F);
    glDrawArrays(GL_LINE_STRIP, 0, numVertices);

    LoadLayout();
    glTranslatef(0.0F, -shift, 0.0F);
    glScalef(1.0F, -stretch, 1.0F);
    glDrawArrays(GL_LINE_STRIP, kVerticesPerChannel, numVertices);
  }
}

void Spectrum::DrawBand(int channel, const LineStyle& style) const {
  const float direction = channel == 0 ? style.amplitude : -style.amplitude;
  const float stretch = std::sqrt(kBandEdge);
  const Vertex* vertex = vertices.data() + channel * kVerticesPerChannel;
  glBegin(GL_TRIANGLE_STRIP);
  for (int k = 0; k < numVertices; ++k, ++vertex) {
    SetColor(style.inner, style.alpha);
    glVertex3f(vertex->x, 0.0F, 0.0F);
    SetColor(style.outer, style.alpha);
    glVertex3f(vertex->x, direction * (kBandEdge + stretch * vertex->y), 0.0F);
  }
  glEnd();
}

void Spectrum::Render() const {
  const Settings& settings = pluginData->settings;
  const float loudness = pluginData->loudness;

  LineStyle style = {settings.innerColor, settings.outerColor, 0.0F, 0.0F};
  if (settings.colorCycle != 0) {
    cycle += static_cast<std::uint32_t>(TruncateToInt32(loudness * loudness * 3000.0F));
    style.inner = TurnHue(style.inner, cycle);
    style.outer = TurnHue(style.outer, cycle);
  }
  style.amplitude = std::fmin(std::sqrt(std::sqrt(loudness * 3.5F)), 0.7F);
  style.alpha = 0.2F * settings.intensity * std::sqrt(style.amplitude);

  glDisable(GL_TEXTURE_2D);
  glInterleavedArrays(GL_V2F, sizeof(Vertex), vertices.data());
  DrawPasses(style);

  LoadLayout();
  DrawBand(0, style);
  DrawBand(1, style);
  glEnable(GL_TEXTURE_2D);
  glLoadIdentity();
}

void Spectrum::DrawText() const {
  const std::int32_t wanted = pluginData->settings.numFrequencyLabels;
  if (wanted <= 0) return;
  const int size = std::clamp(FontSystem::GetSize(), kLabelSizes[0], kLabelSizes[1]);
  const int labels = std::min(wanted, kMostLabelPixels / size);
  const bool vertical = pluginData->settings.verticalLayout != 0;
  const int bins = ActiveBins();
  const float span = frequencyToScreen(bins);
  const CNumbers plain;
  const auto topHertz = static_cast<float>(bins * kHertzPerBin);

  float p = 0.03F;
  while (p < 1.0F) {
    const float hertz = topHertz * screenToFrequency(p * span) / screenToFrequency(span);
    char text[64];
    std::snprintf(text, sizeof text, "%.1fk", hertz * 0.001);

    const float x = (p + p) - 1.0F;
    if (vertical) {
      FontSystem::DrawCString(text, -0.04F, x + 0.01F);
    } else {
      FontSystem::DrawCString(text, x + 0.01F, -0.04F);
    }
    glBegin(GL_LINE_STRIP);
    if (vertical) {
      glVertex2f(0.0F, x);
      glVertex2f(-0.02F, x);
    } else {
      glVertex2f(x, 0.01F);
      glVertex2f(x, -0.01F);
    }
    glEnd();
    p = static_cast<float>(p + 1.0 / labels);
  }
}

} // namespace halvenor
