#include "tests/raster/frames.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>

namespace halvenor {
namespace {

constexpr int kVertices = 300;
constexpr const char* kPrograms[] = {"blur.vp", "blur_ARB.fp", "passThrough.vp", "darken_ARB.fp"};

GLenum TargetOf(int program) {
  return program % 2 == 0 ? GL_VERTEX_PROGRAM_ARB : GL_FRAGMENT_PROGRAM_ARB;
}

void Quad(const gl_calls::Table& gl, float x, float y) {
  gl.glBegin(GL_TRIANGLE_STRIP);
  for (int corner = 0; corner < 4; ++corner) {
    const bool right = corner % 2 != 0;
    const bool top = corner / 2 != 0;
    gl.glTexCoord2f(right ? 1.0F : 0.0F, top ? 1.0F : 0.0F);
    gl.glVertex3f(right ? x : -x, top ? y : -y, 0.0F);
  }
  gl.glEnd();
}

void Lines(const gl_calls::Table& gl, const FrameLook& look, int number) {
  thread_local float vertices[kVertices][2];
  const auto t = static_cast<float>(number);
  for (int i = 0; i < kVertices; ++i) {
    const float x = static_cast<float>(i) / (kVertices - 1);
    vertices[i][0] = 2 * x - 1;
    vertices[i][1] = std::fabs(std::sin(x * 40 + t * 0.3F) * std::cos(x * 9 - t * 0.2F)) * 0.6F;
  }
  gl.glDisable(GL_TEXTURE_2D);
  gl.glInterleavedArrays(GL_V2F, 8, vertices);
  const auto load = [&] {
    gl.glLoadIdentity();
    if (look.vertical) gl.glRotatef(90, 0, 0, 1);
  };
  for (int pass = 0; pass < look.passes; ++pass) {
    const float s = (static_cast<float>(pass) + 0.5F) * 0.5F / static_cast<float>(look.passes);
    gl.glColor4f(0.9F - s, 0.3F + s, 0.2F, 0.35F);
    for (const float side : {0.6F, -0.6F}) {
      load();
      gl.glTranslatef(0, side * s, 0);
      gl.glScalef(1, side * std::sqrt(s), 1);
      gl.glDrawArrays(GL_LINE_STRIP, 0, kVertices);
    }
  }
  load();
  for (const float side : {0.6F, -0.6F}) {
    gl.glBegin(GL_TRIANGLE_STRIP);
    for (const auto& vertex : vertices) {
      gl.glColor4f(0.9F, 0.3F, 0.2F, 0.1F);
      gl.glVertex3f(vertex[0], 0, 0);
      gl.glColor4f(0.4F, 0.8F, 0.2F, 0.1F);
      gl.glVertex3f(vertex[0], side * (0.495F + 0.7F * vertex[1]), 0);
    }
    gl.glEnd();
  }
  gl.glEnable(GL_TEXTURE_2D);
  gl.glLoadIdentity();
}

void UsePrograms(const gl_calls::Table& gl, int vertex, int fragment) {
  gl.glEnable(GL_VERTEX_PROGRAM_ARB);
  gl.glEnable(GL_FRAGMENT_PROGRAM_ARB);
  gl.glBindProgramARB(GL_VERTEX_PROGRAM_ARB, static_cast<GLuint>(vertex));
  gl.glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, static_cast<GLuint>(fragment));
}

void StopPrograms(const gl_calls::Table& gl) {
  gl.glDisable(GL_VERTEX_PROGRAM_ARB);
  gl.glDisable(GL_FRAGMENT_PROGRAM_ARB);
}

void Blur(FrameApi& api, int source) {
  const gl_calls::Table& gl = api.gl;
  UsePrograms(gl, 1, 2);
  gl.glDisable(GL_BLEND);
  gl.glColor4f(1, 1, 1, 1);
  for (int pass = 0; pass < 4; ++pass) {
    api.bind(pass % 2 == 0 ? 3 : 2);
    gl.glClear(GL_COLOR_BUFFER_BIT);
    gl.glBindTexture(GL_TEXTURE_2D, api.textures[pass == 0 ? source : pass % 2 == 0 ? 2 : 3]);
    const float offset = 0.006F * 512 / kTrailSize;
    gl.glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, pass % 2 == 0 ? offset : 0.0F,
                                    pass % 2 == 0 ? 0.0F : offset, 0, 0);
    Quad(gl, 1, 1);
  }
  gl.glEnable(GL_BLEND);
  StopPrograms(gl);
}

} // namespace

void PrepareFrames(FrameApi& api) {
  const gl_calls::Table& gl = api.gl;
  for (int i = 0; i < 4; ++i) {
    std::ifstream file(std::string(RESOURCES "/") + kPrograms[i]);
    std::ostringstream text;
    text << file.rdbuf();
    GLuint name = 0;
    gl.glGenProgramsARB(1, &name);
    gl.glBindProgramARB(TargetOf(i), name);
    gl.glProgramStringARB(TargetOf(i), GL_PROGRAM_FORMAT_ASCII_ARB,
                          static_cast<GLsizei>(text.str().size()), text.str().data());
  }
  for (int picture = 0; picture < 4; ++picture) {
    gl.glBindTexture(GL_TEXTURE_2D, api.textures[picture]);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    api.bind(picture);
    gl.glClearColor(0, 0, 0, 0);
    gl.glClear(GL_COLOR_BUFFER_BIT);
  }
  gl.glEnable(GL_TEXTURE_2D);
  gl.glEnable(GL_BLEND);
  gl.glClearColor(0, 0, 0, 1);
}

void DrawFrame(FrameApi& api, const FrameLook& look, int number, int width, int height) {
  const gl_calls::Table& gl = api.gl;
  const int trails = number % 2;
  api.bind(trails);
  gl.glViewport(0, 0, kTrailSize, kTrailSize);
  gl.glBindTexture(GL_TEXTURE_2D, api.textures[1 - trails]);
  gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  gl.glClear(GL_COLOR_BUFFER_BIT);
  gl.glLoadIdentity();
  gl.glColor4f(1, 1, 1, (1 - look.fade) / static_cast<float>(look.copies));
  for (int copy = 1; copy <= look.copies; ++copy) {
    const float d = look.growth * static_cast<float>(copy) / static_cast<float>(look.copies);
    Quad(gl, 1 + d * 0.3F, 1 + d);
  }
  if (look.passes > 0) Lines(gl, look, number);
  if (look.glow) Blur(api, trails);

  api.bind(4);
  gl.glViewport(0, 0, width, height);
  gl.glClear(GL_COLOR_BUFFER_BIT);
  gl.glColor4f(1, 1, 1, 1);
  gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  gl.glBindTexture(GL_TEXTURE_2D, api.textures[trails]);
  Quad(gl, 1, 1);
  if (look.overlay) Lines(gl, look, number);
  if (!look.glow) return;
  UsePrograms(gl, 3, 4);
  gl.glBindTexture(GL_TEXTURE_2D, api.textures[2]);
  gl.glColor4f(0.7F, 0.7F, 0.7F, 0.6F);
  gl.glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
  Quad(gl, 1, 1);
  gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  gl.glColor4f(1, 1, 1, 1);
  Quad(gl, 1, 1);
  StopPrograms(gl);
}

} // namespace halvenor
