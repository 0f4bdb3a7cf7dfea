#include "raster/programs/execution.h"
#include "raster/programs/program_text.h"
#include "tests/raster/mesa.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

namespace halvenor::raster {
namespace {

// The pixels of a row lie at 1/8, 3/8, 5/8 and 7/8 of the way between these ends.
constexpr int kPixels = 4;
constexpr Vec4 kLeftColor{0.1F, 0.9F, 0.4F, 0.0F};
constexpr Vec4 kRightColor{0.8F, 0.2F, 0.6F, 1.0F};
constexpr Vec4 kLeftCoord{-0.5F, 0.25F, 2.0F, 1.0F};
constexpr Vec4 kRightCoord{1.5F, 0.75F, -1.0F, 0.5F};
constexpr Vec4 kLocal{0.3F, -0.4F, 2.5F, 0.75F};

// A texture without any details.
constexpr std::array<std::uint8_t, 4> kTexel = {51, 102, 204, 153};
class Plain : public Sampler {
public:
  void Sample(std::span<const Vec4> /*at*/, std::span<Vec4> colors) const override {
    for (Vec4& color : colors) {
      for (std::size_t i = 0; i < color.size(); ++i)
        color[i] = static_cast<float>(kTexel[i]) / 255.0F;
    }
  }
};

// Into a program of its own: Mesa does not survive another text for one that has drawn.
bool LoadInMesa(const std::string& text) {
  GLuint program = 0;
  glGenProgramsARB(1, &program);
  glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, program);
  glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
                     static_cast<GLsizei>(text.size()), text.data());
  return glGetError() == GL_NO_ERROR;
}

std::vector<std::uint8_t> DrawnByMesa() {
  const auto corner = [](float x, const Vec4& color, const Vec4& coord) {
    glColor4fv(color.data());
    glTexCoord4fv(coord.data());
    glVertex2f(x, -1.0F);
    glVertex2f(x, 1.0F);
  };
  glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 3, kLocal.data());
  glBegin(GL_TRIANGLE_STRIP);
  corner(-1.0F, kLeftColor, kLeftCoord);
  corner(1.0F, kRightColor, kRightCoord);
  glEnd();
  return ReadPixels(kPixels, 1);
}

Varying Between(const Vec4& left, const Vec4& right) {
  Varying varying;
  for (std::size_t i = 0; i < 4; ++i) {
    varying.step[i] = (right[i] - left[i]) / static_cast<float>(kPixels);
    varying.start[i] = left[i] + varying.step[i] / 2.0F;
  }
  return varying;
}

TEST(FragmentProgramsTest, ComputeWhatMesaComputes) {
  const Mesa mesa(kPixels, 1);
  glEnable(GL_FRAGMENT_PROGRAM_ARB);
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, kTexel.data());

  // c: the color, t: the texture coordinates, p: a local parameter, k: a constant.
  const std::string declarations =
      "!!ARBfp1.0\nOPTION ARB_precision_hint_nicest; # what is 100 % exact\n"
      "ATTRIB c = fragment.color.primary; ATTRIB t = fragment.texcoord[0];\n"
      "PARAM p = program.local[3]; PARAM k = { 0.5, -0.25, .125, 1.5e0 };\n"
      "PARAM list[] = { program.local[2..4], { 0.25 }, 0.5, program.env[1] };\n"
      "OUTPUT o = result.color; TEMP a, b; ALIAS copy = a;\n";
  const char* bodies[] = {
      "MOV o, c;",
      "MOV o, c.bgra;",
      "MOV o, c.y; MOV o.xz, -k;",
      "ABS o, t;",
      "ADD o, c, -k.wxyz;",
      "SUB o, 1.0, c;",
      "MUL o, c, p;",
      "MAD o, t, k, c;",
      "MIN a, t, c; MAX o, a, k;",
      "SLT o, t, c;",
      "SGE o, c, t;",
      "CMP o, t, c, 0.2;",
      "LRP o, c, p, t;",
      "DP3 o, c, t;",
      "DP4 o, c, t;",
      "DPH o, c, t;",
      "XPD o.xyz, c, t; MOV o.w, 1.0;",
      "FLR o, t; FRC o.yz, t;",
      "RCP a, p.z; RSQ a.w, -p.z; MOV o, copy;",
      "SWZ o, c, 1, -z, 0, w;",
      "ADD_SAT a, t, t; MUL o, a, 0.5;",
      "TEX o, t, texture[0], 2D;",
      "ADD a, t, k; TEX b.xw, a, texture, 2D; MOV b.yz, c; MUL o, b, c.a;",
      "MOV a, k; MUL a.y, a.x, a.w; ADD b, a, a.yyyy; MUL o, b, c;", // of constants
      "MOV a, c; MOV a.x, a.y; MOV a.y, a.x; MOV o, a.yxwz;",
      "MUL o, c, list[1].w; ADD o.y, list[3].x, list[4]; MOV o.z, list[5];",
      // Refused by both.
      "MOV o, ;",
      "MOV o, c.xyz;",
      "MOV o c;",
      "ADD o, c;",
      "MOV list[1], c;",
      "MOV o, list[6];",
      "MOV o, list;",
      "TEMP c;",
      "TEX o, t, texture[0], 2E;",
      "PARAM q = program.local[1..2];",
      "RCP o, c.xyzw;",
      "MOV o.xx, c;",
      "MOV vertex.color, c;",
      "MOV o, vertex.color;",
      "@",
      "OPTION ARB_precision_hint_fastest;",
      "MOV o, c; END #\nMOV",
  };
  for (const char* body : bodies) {
    const std::string text = declarations + body + "\nEND\n";
    SCOPED_TRACE(body);
    const auto parsed = ParseProgram(ProgramTarget::Fragment, text);
    const auto* program = std::get_if<Program>(&parsed);
    const auto* error = std::get_if<ProgramError>(&parsed);
    ASSERT_EQ(program != nullptr, LoadInMesa(text)) << (error != nullptr ? error->message : "");
    if (program == nullptr) continue;
    const auto theirs = DrawnByMesa();

    std::array<Vec4, kMaxLocalParameters> local{};
    local[3] = kLocal;
    Varyings varyings;
    varyings[kColor] = Between(kLeftColor, kRightColor);
    varyings[kTexCoord0] = Between(kLeftCoord, kRightCoord);
    std::array<Vec4, kPixels> ours;
    RunFragmentRow(*program, {local.data(), nullptr}, varyings, Plain(), ours);
    for (std::size_t i = 0; i < theirs.size(); ++i) {
      EXPECT_NEAR(ours[i / 4][i % 4] * 255.0F, theirs[i], 1.01F)
          << "pixel " << i / 4 << ", component " << i % 4;
    }
  }
  glDeleteTextures(1, &texture);
}

} // namespace
} // namespace halvenor::raster
