#include "tests/raster/call_sequence.h"

#include <GL/glext.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>

namespace halvenor {
namespace {

using gl_calls::Table;

constexpr unsigned kTextures = 3;
// Pairs of resources, and one that is no sum of lookups followed by a polynomial.
constexpr const char* kPrograms[] = {"blur.vp",       "blur_ARB.fp", "passThrough.vp",
                                     "darken_ARB.fp", "blur.vp",     nullptr};
constexpr char kNoTaps[] = "!!ARBfp1.0\nTEMP a, b;\nTEX a, fragment.texcoord[3], texture, 2D;\n"
                           "TEX b, fragment.texcoord[0], texture, 2D;\n"
                           "MUL_SAT result.color, a.gbra, b;\nEND\n";
constexpr GLsizei kLists = 2;

std::string ReadResource(const char* name) {
  std::ifstream file(std::string(RESOURCES) + "/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Sequence {
public:
  Sequence(Choices& choices, std::span<GlPlayer* const> players, bool hostile)
      : choices_(choices), players_(players), hostile_(hostile) {}

  std::string Play(int steps) {
    SetUp();
    static constexpr struct {
      const char* name;
      void (Sequence::*act)();
    } kActs[] = {{"target", &Sequence::ChooseTarget}, {"clear", &Sequence::Clear},
                 {"blend", &Sequence::ChooseBlend},   {"matrix", &Sequence::ChangeMatrix},
                 {"view", &Sequence::ChangeView},     {"lines", &Sequence::DrawLines},
                 {"array", &Sequence::DrawArray},     {"fill", &Sequence::DrawFill},
                 {"band", &Sequence::DrawBand},       {"quad", &Sequence::DrawTextured},
                 {"image", &Sequence::MakeTexture},   {"programs", &Sequence::DrawWithPrograms},
                 {"text", &Sequence::DrawText},       {"wrong call", &Sequence::CallWrongly}};
    for (int step = 0; step < steps && choices_.AreLeft() && fault_.empty(); ++step) {
      const auto& [name, act] = kActs[choices_.Below(std::size(kActs))];
      name_ = name;
      (this->*act)();
      CompareErrors();
    }
    return fault_;
  }

private:
  template <class Call>
  void All(const Call& call) {
    for (GlPlayer* player : players_)
      call(player->Gl(), *player);
  }

  void CompareErrors() {
    GLenum first = GL_NO_ERROR;
    for (std::size_t i = 0; i < players_.size(); ++i) {
      const GLenum error = players_[i]->Gl().glGetError();
      if (i == 0) first = error;
      if (error != first && fault_.empty())
        fault_ = name_ + ": " + std::to_string(first) + " and " + std::to_string(error);
    }
  }

  void SetUp() {
    All([](const Table& gl, GlPlayer& player) {
      player.textures.resize(kTextures);
      gl.glGenTextures(kTextures, player.textures.data());
      player.programs.resize(std::size(kPrograms));
      gl.glGenProgramsARB(static_cast<GLsizei>(player.programs.size()), player.programs.data());
      for (std::size_t i = 0; i < player.programs.size(); ++i) {
        const std::string text = kPrograms[i] != nullptr ? ReadResource(kPrograms[i]) : kNoTaps;
        const GLenum target = i % 2 == 0 ? GL_VERTEX_PROGRAM_ARB : GL_FRAGMENT_PROGRAM_ARB;
        gl.glBindProgramARB(target, player.programs[i]);
        gl.glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB,
                              static_cast<GLsizei>(text.size()), text.data());
      }
      player.lists = gl.glGenLists(kLists);
      // A letter of 10 x 3 pixels, and one that only moves.
      static constexpr std::uint8_t kRows[] = {0xF5, 0x40, 0x81, 0xC0, 0xAA, 0x80};
      player.DefineBitmapList(player.lists, {10, 3, 1.0F, 1.0F, 7.25F, 0.5F, kRows});
      player.DefineBitmapList(player.lists + 1, {0, 0, 0.0F, 0.0F, 3.0F, 0.0F, kRows});
      gl.glBindTexture(GL_TEXTURE_2D, player.trailsTexture);
      for (const GLenum filter : {GLenum{GL_TEXTURE_MIN_FILTER}, GLenum{GL_TEXTURE_MAG_FILTER}})
        gl.glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
      for (const GLenum wrap : {GLenum{GL_TEXTURE_WRAP_S}, GLenum{GL_TEXTURE_WRAP_T}})
        gl.glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
      for (const int picture : {kTrails, kWindow}) {
        player.Bind(picture);
        gl.glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
        gl.glClear(GL_COLOR_BUFFER_BIT);
      }
      gl.glViewport(0, 0, kPictureSizes[kWindow].width, kPictureSizes[kWindow].height);
    });
    for (unsigned i = 0; i < kTextures; ++i)
      MakeTexture();
    CompareErrors();
  }

  float Number(float low, float high) {
    constexpr float kHuge[] = {std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity(),
                               3e38F,
                               -1e20F,
                               40000.0F,
                               1e-42F};
    if (hostile_ && choices_.Below(16) == 0) return kHuge[choices_.Below(std::size(kHuge))];
    return choices_.Between(low, high);
  }

  void Color() {
    const std::array<float, 4> c = {Number(0, 1), Number(0, 1), Number(0, 1), Number(0, 1)};
    All([&](const Table& gl, GlPlayer&) { gl.glColor4f(c[0], c[1], c[2], c[3]); });
  }

  void Vertex() {
    const float x = Number(-1.2F, 1.2F);
    const float y = Number(-1.2F, 1.2F);
    All([&](const Table& gl, GlPlayer&) { gl.glVertex3f(x, y, 0.0F); });
  }

  void ChooseTarget() {
    picture_ = picture_ == kWindow ? kTrails : kWindow;
    const PictureSize size = kPictureSizes[picture_];
    All([&](const Table& gl, GlPlayer& player) {
      player.Bind(picture_);
      gl.glViewport(0, 0, size.width, size.height);
    });
  }

  void Clear() {
    const std::array<float, 3> c = {Number(0, 0.5F), Number(0, 0.5F), Number(0, 0.5F)};
    All([&](const Table& gl, GlPlayer&) {
      gl.glClearColor(c[0], c[1], c[2], 1.0F);
      gl.glClear(GL_COLOR_BUFFER_BIT);
    });
  }

  void ChooseBlend() {
    static constexpr GLenum kFactors[][2] = {
        {GL_SRC_ALPHA, GL_ONE}, {GL_ONE, GL_ONE_MINUS_SRC_COLOR}, {GL_ONE, GL_SRC_ALPHA}};
    const auto& factors = kFactors[choices_.Below(std::size(kFactors))];
    const bool isOn = choices_.Below(4) != 0;
    All([&](const Table& gl, GlPlayer&) {
      gl.glBlendFunc(factors[0], factors[1]);
      isOn ? gl.glEnable(GL_BLEND) : gl.glDisable(GL_BLEND);
    });
  }

  void ChangeMatrix() {
    const unsigned kind = choices_.Below(6);
    const float x = Number(0.3F, 1.5F);
    const float y = Number(-0.5F, 1.0F);
    All([&](const Table& gl, GlPlayer&) {
      if (kind == 0) gl.glPushMatrix();
      if (kind == 1) gl.glPopMatrix();
      if (kind == 2) gl.glTranslatef(y * 0.5F, x * 0.2F, 0.0F);
      if (kind == 3) gl.glScalef(x, x, 1.0F);
      if (kind == 4) gl.glRotatef(y * 180.0F, 0.0F, 0.0F, 1.0F);
      if (kind == 5) gl.glLoadIdentity();
    });
  }

  void ChangeView() {
    const PictureSize size = kPictureSizes[picture_];
    const bool isWhole = choices_.Below(2) == 0;
    const int x = isWhole ? 0 : static_cast<int>(choices_.Below(20)) - 5;
    const int y = isWhole ? 0 : static_cast<int>(choices_.Below(20)) - 5;
    const int width = isWhole ? size.width : static_cast<int>(choices_.Below(70));
    const int height = isWhole ? size.height : static_cast<int>(choices_.Below(60)) - 2;
    All([&](const Table& gl, GlPlayer&) { gl.glViewport(x, y, width, height); });
  }

  void DrawLines() {
    static constexpr GLenum kModes[] = {GL_LINES, GL_LINE_STRIP, GL_LINE_LOOP};
    const GLenum mode = kModes[choices_.Below(std::size(kModes))];
    Color();
    All([&](const Table& gl, GlPlayer&) { gl.glBegin(mode); });
    for (unsigned i = choices_.Below(7); i > 0; --i)
      Vertex();
    All([](const Table& gl, GlPlayer&) { gl.glEnd(); });
  }

  void DrawArray() {
    std::array<float, 24> values;
    for (float& value : values)
      value = Number(-1.2F, 1.2F);
    const auto count = static_cast<GLsizei>(choices_.Below(12));
    Color();
    All([&](const Table& gl, GlPlayer&) {
      gl.glInterleavedArrays(GL_V2F, 0, values.data());
      gl.glDrawArrays(GL_LINE_STRIP, 0, count);
    });
  }

  // Upright, as the plug-in's are.
  void Corners(float spread) {
    const std::array<float, 4> at = {Number(-1.5F, 0.0F), Number(-1.5F, 0.0F), Number(0.1F, 1.5F),
                                     Number(0.1F, 1.5F)};
    All([&](const Table& gl, GlPlayer&) {
      gl.glBegin(GL_TRIANGLE_STRIP);
      for (const unsigned corner : {0U, 1U, 2U, 3U}) {
        const unsigned right = corner & 1U;
        const unsigned top = corner >> 1U;
        gl.glTexCoord2f(static_cast<float>(right) * spread, static_cast<float>(top) * spread);
        gl.glVertex3f(at[right * 2], at[top * 2 + 1], 0.0F);
      }
      gl.glEnd();
    });
  }

  void Upright(float spread) {
    All([](const Table& gl, GlPlayer&) {
      gl.glPushMatrix();
      gl.glLoadIdentity();
    });
    Corners(spread);
    All([](const Table& gl, GlPlayer&) { gl.glPopMatrix(); });
  }

  void DrawFill() {
    Color();
    Upright(1.0F);
  }

  void DrawBand() {
    All([](const Table& gl, GlPlayer&) { gl.glBegin(GL_TRIANGLE_STRIP); });
    for (int i = 0; i < 4; ++i) {
      Color();
      Vertex();
    }
    All([](const Table& gl, GlPlayer&) { gl.glEnd(); });
  }

  // Any texture but the one that is drawn into.
  void BindTexture() {
    const unsigned which = choices_.Below(picture_ == kTrails ? kTextures : kTextures + 1);
    All([&](const Table& gl, GlPlayer& player) {
      gl.glBindTexture(GL_TEXTURE_2D,
                       which < kTextures ? player.textures[which] : player.trailsTexture);
    });
  }

  void DrawTextured() {
    BindTexture();
    Color();
    All([](const Table& gl, GlPlayer&) { gl.glEnable(GL_TEXTURE_2D); });
    Upright(1.0F);
    All([](const Table& gl, GlPlayer&) { gl.glDisable(GL_TEXTURE_2D); });
  }

  void MakeTexture() {
    const unsigned which = choices_.Below(kTextures);
    const GLenum format = choices_.Below(2) == 0 ? GL_RGB : GL_RGBA;
    const auto width = static_cast<GLsizei>(choices_.Below(9) + 1);
    const auto height = static_cast<GLsizei>(choices_.Below(9) + 1);
    const GLint filter = choices_.Below(4) == 0 ? GL_NEAREST : GL_LINEAR;
    std::array<std::uint8_t, 12 * 9 * 4> pixels;
    unsigned value = choices_.Below(256);
    for (std::uint8_t& pixel : pixels)
      pixel = static_cast<std::uint8_t>(value = value * 5 + 37);
    All([&](const Table& gl, GlPlayer& player) {
      gl.glBindTexture(GL_TEXTURE_2D, player.textures[which]);
      gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
      gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
      gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
      gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
      gl.glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format,
                      GL_UNSIGNED_BYTE, pixels.data());
    });
  }

  void DrawWithPrograms() {
    BindTexture();
    Color();
    const std::size_t pair = choices_.Below(3) * std::size_t{2};
    const float x = Number(-0.02F, 0.02F);
    const float y = Number(-0.02F, 0.02F);
    All([&](const Table& gl, GlPlayer& player) {
      gl.glBindProgramARB(GL_VERTEX_PROGRAM_ARB, player.programs[pair]);
      gl.glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, player.programs[pair + 1]);
      gl.glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, x, y, 0.0F, 0.0F);
      gl.glEnable(GL_TEXTURE_2D); // without it, Mesa misses that another texture is bound
      gl.glEnable(GL_VERTEX_PROGRAM_ARB);
      gl.glEnable(GL_FRAGMENT_PROGRAM_ARB);
    });
    Upright(1.0F);
    All([](const Table& gl, GlPlayer&) {
      gl.glDisable(GL_VERTEX_PROGRAM_ARB);
      gl.glDisable(GL_FRAGMENT_PROGRAM_ARB);
      gl.glDisable(GL_TEXTURE_2D);
    });
  }

  void DrawText() {
    Color();
    const float x = Number(-1.1F, 1.1F);
    const float y = Number(-1.1F, 1.1F);
    All([&](const Table& gl, GlPlayer& player) {
      gl.glRasterPos3f(x, y, 0.0F);
      for (const GLuint letter : {0U, 1U, 0U, 9U})
        gl.glCallList(player.lists + letter);
    });
  }

  void CallWrongly() {
    static constexpr void (*kCalls[])(const Table&, GlPlayer&) = {
        [](const Table& gl, GlPlayer&) { gl.glEnable(GL_RGBA); },
        [](const Table& gl, GlPlayer&) { gl.glBlendFunc(GL_ONE, GL_RGBA); },
        [](const Table& gl, GlPlayer&) { gl.glBegin(99); },
        [](const Table& gl, GlPlayer&) { gl.glEnd(); },
        [](const Table& gl, GlPlayer&) { gl.glClear(0x80000000U); },
        [](const Table& gl, GlPlayer&) { gl.glViewport(0, 0, -1, 5); },
        [](const Table& gl, GlPlayer&) { gl.glHint(GL_FOG_HINT, GL_RGBA); },
        [](const Table& gl, GlPlayer&) { gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 3); },
        [](const Table& gl, GlPlayer&) { gl.glPixelStorei(GL_RGBA, 1); },
        [](const Table& gl, GlPlayer&) { gl.glDrawArrays(GL_LINES, 0, -1); },
        [](const Table& gl, GlPlayer&) { gl.glDrawArrays(99, 0, 1); },
        [](const Table& gl, GlPlayer&) { gl.glInterleavedArrays(GL_RGBA, 0, nullptr); },
        [](const Table& gl, GlPlayer&) { gl.glInterleavedArrays(GL_V2F, -1, nullptr); },
        [](const Table& gl, GlPlayer&) { gl.glGenLists(-1); },
        [](const Table& gl, GlPlayer&) { gl.glDeleteLists(1, -1); },
        [](const Table& gl, GlPlayer&) { gl.glGetString(GL_RGBA); },
        [](const Table& gl, GlPlayer&) {
          GLint value = 0;
          gl.glGetIntegerv(GL_UNSIGNED_BYTE, &value);
        },
        [](const Table& gl, GlPlayer&) { gl.glBindTexture(GL_RGBA, 1); },
        [](const Table& gl, GlPlayer&) { gl.glDeleteTextures(-1, nullptr); },
        [](const Table& gl, GlPlayer&) { gl.glGenTextures(-1, nullptr); },
        [](const Table& gl, GlPlayer&) {
          gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_LINEAR);
        },
        [](const Table& gl, GlPlayer&) {
          gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        },
        [](const Table& gl, GlPlayer&) { gl.glTexParameteri(GL_RGBA, GL_TEXTURE_WRAP_S, 0); },
        [](const Table& gl, GlPlayer& player) {
          gl.glBindTexture(GL_TEXTURE_2D, player.textures[0]);
          gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, -1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
          gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1 << 20, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                          nullptr);
        },
        [](const Table& gl, GlPlayer& player) {
          gl.glBindTexture(GL_TEXTURE_2D, player.textures[0]);
          gl.glTexImage2D(GL_TEXTURE_2D, -1, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        },
        [](const Table& gl, GlPlayer& player) {
          gl.glBindTexture(GL_TEXTURE_2D, player.textures[0]);
          gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 7, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        },
        [](const Table& gl, GlPlayer&) { gl.glBindProgramARB(GL_RGBA, 1); },
        [](const Table& gl, GlPlayer& player) {
          gl.glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, player.programs[0]);
        },
        [](const Table& gl, GlPlayer&) { gl.glGenProgramsARB(-1, nullptr); },
        [](const Table& gl, GlPlayer&) { gl.glDeleteProgramsARB(-1, nullptr); },
        [](const Table& gl, GlPlayer&) {
          gl.glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_RGBA, 0, "");
        },
        [](const Table& gl, GlPlayer&) {
          gl.glProgramStringARB(GL_RGBA, GL_PROGRAM_FORMAT_ASCII_ARB, 0, "");
        },
        [](const Table& gl, GlPlayer&) {
          gl.glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 100000, 0, 0, 0, 0);
        },
        // Not allowed between glBegin and glEnd.
        [](const Table& gl, GlPlayer&) {
          gl.glBegin(GL_LINES);
          gl.glLoadIdentity();
          gl.glEnd();
        },
        [](const Table& gl, GlPlayer&) {
          gl.glBegin(GL_LINES);
          gl.glBegin(GL_LINES);
          gl.glEnd();
        },
        [](const Table& gl, GlPlayer&) {
          gl.glBegin(GL_LINES);
          gl.glEnable(GL_RGBA);
          gl.glEnd();
          gl.glEnable(GL_RGBA); // the first error counts
        },
    };
    const unsigned which = choices_.Below(std::size(kCalls));
    name_ += " " + std::to_string(which);
    All(kCalls[which]);
  }

  Choices& choices_;
  std::span<GlPlayer* const> players_;
  bool hostile_;
  int picture_ = kWindow;
  std::string name_ = "set-up";
  std::string fault_;
};

} // namespace

std::string PlaySequence(Choices& choices, std::span<GlPlayer* const> players, int steps,
                         bool hostile) {
  return Sequence(choices, players, hostile).Play(steps);
}

} // namespace halvenor
