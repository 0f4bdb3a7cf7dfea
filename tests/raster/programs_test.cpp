#include "raster/programs/execution.h"
#include "raster/programs/program_text.h"
#include "raster/programs/taps.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <random>

namespace halvenor::raster {
namespace {

using testing::FloatEq;
using testing::FloatNear;
using testing::Pointwise;

constexpr auto kVertex = ProgramTarget::Vertex;
constexpr auto kFragment = ProgramTarget::Fragment;

Program Parsed(ProgramTarget target, const std::string& text) {
  auto parsed = ParseProgram(target, text);
  if (const auto* error = std::get_if<ProgramError>(&parsed)) {
    ADD_FAILURE() << text << "\n" << error->position << ": " << error->message;
    return {};
  }
  return std::get<Program>(parsed);
}

Program Fragment(const std::string& body) {
  return Parsed(kFragment, "!!ARBfp1.0\n" + body + "\nEND");
}

Program Resource(const std::string& name) {
  std::ifstream file(RESOURCES "/" + name);
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  return Parsed(name.substr(name.size() - 2) == "vp" ? kVertex : kFragment, text);
}

// Colors that depend on the place alone and have nothing in common with those near by.
class Noise : public Sampler {
public:
  void Sample(std::span<const Vec4> at, std::span<Vec4> colors) const override {
    for (std::size_t i = 0; i < at.size(); ++i)
      colors[i] = At(at[i][0], at[i][1]);
  }
  static Vec4 At(float s, float t) {
    const auto cell = [](float x) { return static_cast<unsigned>(std::lround(x * 512.0F) + 4096); };
    std::minstd_rand random(cell(s) * 8191 + cell(t) + 1);
    Vec4 color;
    for (float& channel : color)
      channel = static_cast<float>(random() % 1000) / 999.0F;
    return color;
  }
};

TEST(ProgramTextTest, ErrorsHaveTheirPlace) {
  const struct {
    ProgramTarget target;
    std::string before; ///< what is right, up to the error
    std::string after;
    const char* message;
  } cases[] = {
      {kVertex, "", "", "does not begin"},
      {kVertex, "", "!!ARBfp1.0\nEND", "does not begin"},
      {kFragment, "!!ARBfp1.0\nTEMP a;\n", "", "line 3: expected \"END\""},
      {kFragment, "!!ARBfp1.0\nTEMP a;\n", "BLUR a, a;\nEND", "line 3: an instruction"},
      {kFragment, "!!ARBfp1.0\nTEMP a;\nMOV a, ", "b;\nEND", "not declared"},
      {kFragment, "!!ARBfp1.0 TEMP a, ", "a; END", "declared already"},
      {kFragment, "!!ARBfp1.0 TEMP ", "MUL; END", "no name"},
      {kFragment, "!!ARBfp1.0 MOV result.color", "; END", "expected \",\""},
      {kFragment, "!!ARBfp1.0 MOV result.color.", "gr, 1.0; END", "out of order"},
      {kFragment, "!!ARBfp1.0 MOV result.color, fragment.color", ".xg; END", "components"},
      {kFragment, "!!ARBfp1.0 MOV result.color, fragment.color", ".xy; END", "components"},
      {kFragment, "!!ARBfp1.0 RCP result.color, fragment.color", "; END", "one component"},
      {kFragment, "!!ARBfp1.0 ATTRIB c = fragment.color; MOV ", "c, 1.0; END", "can be written"},
      {kFragment, "!!ARBfp1.0 OUTPUT o = result.color; MOV o, ", "o; END", "cannot be read"},
      {kFragment, "!!ARBfp1.0 MOV result.color, program.local[", "96]; END", "below 96"},
      {kFragment, "!!ARBfp1.0 PARAM a = { 1, 2, 3, 4, ", "5 }; END", "too many components"},
      {kFragment, "!!ARBfp1.0 PARAM a = ", "1e99; END", "too large"},
      {kFragment, "!!ARBfp1.0 PARAM a = 1", "~; END", "no program text has"},
      {kFragment, "!!ARBfp1.0 TEX result.color, fragment.texcoord, texture[", "1], 2D; END",
       "texture unit below 1"},
      {kFragment, "!!ARBfp1.0 TEX result.color, fragment.texcoord, texture, ", "3D; END", "\"2\""},
      {kFragment, "!!ARBfp1.0 OPTION ", "ARB_fog_linear; END", "not supported"},
      {kVertex, "!!ARBvp1.0 OPTION ARB_position_invariant; MOV result.", "position, 1.0; END",
       "not supported"},
      {kVertex, "!!ARBvp1.0 ", "TEX result.color, vertex.texcoord, texture, 2D; END",
       "not supported"},
      {kVertex, "!!ARBvp1.0 PARAM m[3] = { state.matrix.mvp }", "; END", "another size"},
      {kVertex, "!!ARBvp1.0 PARAM m[] = { program.local[3..", "2] }; END", "before it begins"},
  };
  for (const auto& [target, before, after, message] : cases) {
    const auto parsed = ParseProgram(target, before + after);
    const auto* error = std::get_if<ProgramError>(&parsed);
    ASSERT_NE(error, nullptr) << before << after;
    EXPECT_EQ(error->position, static_cast<int>(before.size())) << before << after;
    EXPECT_THAT(error->message, testing::HasSubstr(message)) << before << after;
  }
}

TEST(ProgramTextTest, EndsWithWhatItCanHold) {
  const auto repeated = [](int count, auto line) {
    std::string text = "!!ARBfp1.0\nTEMP first;\n";
    for (int i = 0; i < count; ++i)
      text += line(std::to_string(i));
    return ParseProgram(kFragment, text + "END");
  };
  const auto moves = [](const std::string&) { return std::string("MOV first, first;"); };
  const auto temporaries = [](const std::string& i) { return "TEMP a" + i + ";"; };
  const auto constants = [](const std::string& i) { return "PARAM a" + i + " = " + i + ";"; };
  EXPECT_TRUE(std::holds_alternative<Program>(repeated(kMaxInstructions, moves)));
  EXPECT_TRUE(std::holds_alternative<ProgramError>(repeated(kMaxInstructions + 1, moves)));
  EXPECT_TRUE(std::holds_alternative<Program>(repeated(kMaxTemporaries - 1, temporaries)));
  EXPECT_TRUE(std::holds_alternative<ProgramError>(repeated(kMaxTemporaries, temporaries)));
  EXPECT_TRUE(std::holds_alternative<Program>(repeated(kMaxConstants, constants)));
  EXPECT_TRUE(std::holds_alternative<ProgramError>(repeated(kMaxConstants + 1, constants)));
}

TEST(SimplifyTest, LeavesOnlyWhatOutputsNeed) {
  const Program program = Fragment("PARAM half = 0.5; TEMP a, b, unused;\n"
                                   "MUL a, half, 0.5;\n"
                                   "ADD b.xy, a, fragment.texcoord[1];\n"
                                   "MOV unused, fragment.texcoord[2];\n"
                                   "MOV result.color, fragment.position;\n"
                                   "MAD_SAT result.color, fragment.color, a, 2.0;");
  ASSERT_EQ(program.instructions.size(), 1U);
  EXPECT_EQ(program.instructions[0].opcode, Opcode::Mad);
  EXPECT_EQ(program.attributesRead, 1U << kColor);
  EXPECT_EQ(program.numTemporaries, 0);
}

TEST(VertexProgramTest, RunsForAVertex) {
  const Program program = Parsed(kVertex, "!!ARBvp1.0\n"
                                          "PARAM mvp[4] = { state.matrix.mvp };\n"
                                          "PARAM shift = program.local[2];\n"
                                          "ATTRIB at = vertex.position;\n"
                                          "OUTPUT place = result.position;\n"
                                          "DP4 place.x, mvp[0], at; DP4 place.y, mvp[1], at;\n"
                                          "DP4 place.z, mvp[2], at; DP4 place.w, mvp[3], at;\n"
                                          "ADD result.texcoord[3].xy, vertex.attrib[8], -shift;\n"
                                          "SWZ result.color, vertex.color, -x, 0, 1, y; END");
  const std::array<Vec4, 4> matrix = {{{2, 0, 0, 1}, {0, 3, 0, 2}, {0, 0, 4, 3}, {0, 0, 0, 1}}};
  std::array<Vec4, kMaxLocalParameters> local{};
  local[2] = {0.25F, 0.5F, 0.0F, 0.0F};
  Attributes vertex{};
  vertex[kPosition] = {1, 1, 1, 1};
  vertex[kColor] = {0.25F, 0.75F, 0, 0};
  vertex[kTexCoord0] = {1, 1, 0, 1};
  const Attributes result = RunVertexProgram(program, {local.data(), matrix.data()}, vertex);
  EXPECT_THAT(result[kPosition], Pointwise(FloatEq(), Vec4{3, 5, 7, 1}));
  EXPECT_THAT(result[kTexCoord0 + 3], Pointwise(FloatEq(), Vec4{0.75F, 0.5F, 0, 1}));
  EXPECT_THAT(result[kColor], Pointwise(FloatEq(), Vec4{-0.25F, 0, 1, 0.75F}));
}

// A pair of programs, and whether it is a sum of lookups followed by a polynomial.
struct Pair {
  std::string vertex; ///< body after the header; empty: fixed function
  std::string fragment;
  bool isTaps;
};

TEST(TapsTest, AreRecognizedByTheTextAlone) {
  const std::string shifted = "MOV result.texcoord[0], vertex.texcoord[0];\n"
                              "ADD result.texcoord[1], vertex.texcoord, program.local[0];\n"
                              "MOV result.color, vertex.color;";
  const std::string two = "TEMP a, b; TEX a, fragment.texcoord, texture, 2D;\n"
                          "TEX b, fragment.texcoord[1], texture, 2D;\n";
  const std::string one = "TEMP a, b; TEX a, fragment.texcoord, texture, 2D;\n";
  const Pair pairs[] = {
      {shifted, two + "LRP result.color, 0.25, a, b;", true},
      {shifted, two + "ADD a, a, b; MUL result.color, a, 0.5;", true},
      {shifted, two + "ADD a, a, b; MUL a, a, 0.5; MUL result.color, a, a;", true},
      {shifted, two + "ADD result.color, a, b;", false}, // more than 1
      {shifted, two + "SUB result.color, a, b;", false}, // less than 0
      {shifted, two + "MUL result.color, a, b;", false}, // no polynomial of a sum
      {shifted, two + "MUL a, a, program.local[1]; MUL result.color, a, 0.5;", false},
      {shifted, two + "MUL a, a, fragment.color; LRP result.color, 0.5, a, b;", false},
      {"", two + "LRP result.color, 0.25, a, b;", false}, // nobody writes set 1
      {"MUL result.texcoord, vertex.texcoord, 0.5;", one + "MOV result.color, a;", false},
      {"MOV result.texcoord, vertex.texcoord.yxzw;", one + "MOV result.color, a;", false},
      {"", one + "MOV result.color, a;", true},
      {"", one + "MOV result.color, a.a;", false}, // mixes channels
      {"", one + "DP3 result.color, a, 0.3;", false},
      {"", one + "MUL b, a, a; MUL b, b, b; MUL result.color, b, 0.5;", false}, // degree 4
      {"", one + "MUL a, a, fragment.color; MOV_SAT result.color, a; MOV result.color.a, 0.5;",
       true},
      {"", "TEMP a; MUL a, fragment.texcoord, 0.5; TEX result.color, a, texture, 2D;", false},
      {"", "MOV result.color, fragment.color;", true},
      {"", "MOV result.color, program.local[0];", false},
  };
  std::array<Vec4, kMaxLocalParameters> local{};
  local[0] = {0.125F, -0.25F, 0.0F, 0.0F};
  const ProgramParameters parameters{local.data(), nullptr};
  const Noise noise;
  for (const auto& [vertexBody, fragmentBody, isTaps] : pairs) {
    SCOPED_TRACE(vertexBody + "\n" + fragmentBody);
    const Program fragment = Fragment(fragmentBody);
    const bool isProgram = !vertexBody.empty();
    const Program vertex =
        isProgram
            ? Parsed(kVertex, "!!ARBvp1.0 OPTION ARB_position_invariant;" + vertexBody + "END")
            : Program{};
    TapsInput input{parameters, {}, {1.0F, 0.5F, 0.25F, 0.0F}};
    const auto taps = FindTaps(isProgram ? &vertex : nullptr, fragment, input);
    ASSERT_EQ(taps.has_value(), isTaps);
    if (!taps) continue;

    // One pixel, by the interpreter and by the taps.
    Attributes corner{};
    corner[kTexCoord0] = {0.25F, 0.5F, 0.0F, 1.0F};
    corner[kColor] = input.color;
    if (isProgram) corner = RunVertexProgram(vertex, parameters, corner);
    Varyings varyings;
    for (std::size_t i = 0; i < corner.size(); ++i)
      varyings[i].start = corner[i];
    Vec4 color;
    RunFragmentRow(fragment, {}, varyings, noise, {&color, 1});
    for (std::size_t c = 0; c < 4; ++c) {
      float sum = 0.0F;
      for (int i = 0; i < taps->count; ++i) {
        const Tap& tap = taps->taps[static_cast<std::size_t>(i)];
        sum += tap.weight * Noise::At(0.25F + tap.s, 0.5F + tap.t)[c];
      }
      float value = 0.0F;
      for (int power = kMaxDegree; power >= 0; --power)
        value = value * sum + taps->polynomial[c][static_cast<std::size_t>(power)];
      EXPECT_NEAR(value, color[c], 1.0F / 65534.0F) << "channel " << c;
    }
  }
}

TEST(TapsTest, OfTheResources) {
  const Program shift = Resource("blur.vp");
  const Program pass = Resource("passThrough.vp");
  std::array<Vec4, kMaxLocalParameters> local{};
  local[0] = {0.0F, 0.006F, 0.0F, 0.0F};
  const TapsInput input{{local.data(), nullptr}, {}, {0.7F, 0.7F, 0.5F, 0.6F}};

  const auto blur = FindTaps(&shift, Resource("blur_ARB.fp"), input);
  ASSERT_TRUE(blur.has_value());
  ASSERT_EQ(blur->count, 5);
  constexpr float kBlurTaps[][2] = {
      {0.0F, 0.1888F}, {0.463F, 0.295F}, {-0.463F, 0.295F}, {1.083F, 0.1106F}, {-1.083F, 0.1106F}};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(blur->taps[i].s, 0.0F);
    EXPECT_FLOAT_EQ(blur->taps[i].t, kBlurTaps[i][0] * 0.006F);
    EXPECT_FLOAT_EQ(blur->taps[i].weight, kBlurTaps[i][1]);
  }
  for (const Polynomial& polynomial : blur->polynomial)
    EXPECT_THAT(polynomial, Pointwise(FloatNear(1e-6F), Polynomial{0, 1, 0, 0}));

  const auto darken = FindTaps(&pass, Resource("darken_ARB.fp"), input);
  ASSERT_TRUE(darken.has_value());
  EXPECT_EQ(darken->count, 1);
  EXPECT_THAT(darken->polynomial[0], Pointwise(FloatEq(), Polynomial{0, 0.21F, 0.49F, 0}));
  EXPECT_THAT(darken->polynomial[2], Pointwise(FloatEq(), Polynomial{0, 0.15F, 0.35F, 0}));
  EXPECT_THAT(darken->polynomial[3], Pointwise(FloatEq(), Polynomial{0.6F, 0, 0, 0}));
}

} // namespace
} // namespace halvenor::raster
