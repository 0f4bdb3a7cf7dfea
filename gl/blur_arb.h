// The blur as programs of GL_ARB_vertex_program and GL_ARB_fragment_program.
#pragma once

#include "gl/blur.h"

#include <string>

namespace halvenor {

class BlurARB : public Blur {
public:
  /// Whether the current context has both extensions; logs it when it has not.
  static bool Supported();

  /// Loads the four programs. Failures are reported and leave programs that do not work.
  BlurARB();
  ~BlurARB() override;

  void StartBlurGeneration() override;
  void EndBlurGeneration() override;
  void StartBlurDrawing() override;
  void EndBlurDrawing() override;
  void SetOffset(float x, float y) override;
  void BindTexture(GLuint texture) override;

  /// Replaces `text` with the resource called `fileName`, every line ended by one line feed. Empty,
  /// after a report, when it cannot be read.
  static void LoadFile(const char* fileName, std::string& text);

  /// Replaces `program` with a new one of `target`, compiled from a resource and left bound. A text
  /// that does not compile is reported; the name stays.
  static void LoadShader(const char* fileName, GLuint& program, GLenum target);

private:
  void InitShaders();

  GLuint passThroughProgram = 0;
  GLuint blurVertexProgram = 0;
  GLuint darkenProgram = 0;
  GLuint blurFragmentProgram = 0;
};

} // namespace halvenor
