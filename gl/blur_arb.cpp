#include "gl/blur_arb.h"

#include "files/file_bytes.h"
#include "gl/diagnostics.h"
#include "gl/resource_file.h"
#include "gl_calls/gl.h"

#include <fcntl.h>
#include <utility>

namespace halvenor {
namespace {

bool HasPrograms() {
  const GLubyte* extensions = glGetString(GL_EXTENSIONS);
  const auto has = [extensions](const char* name) {
    return gluCheckExtension(reinterpret_cast<const GLubyte*>(name), extensions) != GL_FALSE;
  };
  return extensions != nullptr && has("GL_ARB_fragment_program") && has("GL_ARB_vertex_program");
}

void StartPrograms(GLuint vertexProgram, GLuint fragmentProgram) {
  glEnable(GL_VERTEX_PROGRAM_ARB);
  glEnable(GL_FRAGMENT_PROGRAM_ARB);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, vertexProgram);
  glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, fragmentProgram);
}

void ReportProgramError() {
  GLint position = 0;
  glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
  const GLubyte* text = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
  DebugLog("shader error at position: %d\n%s\n", position,
           text != nullptr ? reinterpret_cast<const char*>(text) : "");
}

} // namespace

bool BlurARB::Supported() {
  if (HasPrograms()) return true;
  DebugLog(" Halvenor : ARB Shaders not supported!");
  return false;
}

BlurARB::BlurARB() {
  InitShaders();
}

BlurARB::~BlurARB() {
  for (const GLuint program :
       {passThroughProgram, blurVertexProgram, darkenProgram, blurFragmentProgram}) {
    if (program != 0) glDeleteProgramsARB(1, &program);
  }
}

void BlurARB::InitShaders() {
  if (!HasPrograms()) {
    DebugLog(" Halvenor : Pixel shaders not supported.  How did we get here??");
    return;
  }
  LoadShader("passThrough.vp", passThroughProgram, GL_VERTEX_PROGRAM_ARB);
  LoadShader("darken_ARB.fp", darkenProgram, GL_FRAGMENT_PROGRAM_ARB);
  LoadShader("blur.vp", blurVertexProgram, GL_VERTEX_PROGRAM_ARB);
  LoadShader("blur_ARB.fp", blurFragmentProgram, GL_FRAGMENT_PROGRAM_ARB);
  glCheckError();
}

void BlurARB::StartBlurGeneration() {
  StartPrograms(blurVertexProgram, blurFragmentProgram);
}

void BlurARB::EndBlurGeneration() {
  glDisable(GL_VERTEX_PROGRAM_ARB);
  glDisable(GL_FRAGMENT_PROGRAM_ARB);
}

void BlurARB::StartBlurDrawing() {
  StartPrograms(passThroughProgram, darkenProgram);
}

void BlurARB::EndBlurDrawing() {
  glDisable(GL_FRAGMENT_PROGRAM_ARB);
  glDisable(GL_VERTEX_PROGRAM_ARB);
}

void BlurARB::SetOffset(float x, float y) {
  glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, x, y, 0.0F, 0.0F);
}

void BlurARB::BindTexture(GLuint texture) {
  glBindTexture(GL_TEXTURE_2D, texture);
}

void BlurARB::LoadFile(const char* fileName, std::string& text) {
  text.clear();
  std::string path;
  const ResourceLookup lookup = FindResource(fileName, path);
  if (lookup == ResourceLookup::NoFolder) return;
  FileBytes file;
  if (lookup == ResourceLookup::Found) file = ReadFileBytes(AT_FDCWD, path, Links::Follow);
  if (!file.bytes) {
    DebugLog("Couldn't open file");
    return;
  }
  text = std::move(*file.bytes);
  if (!text.empty() && text.back() != '\n') text += '\n';
}

void BlurARB::LoadShader(const char* fileName, GLuint& program, GLenum target) {
  if (program != 0) glDeleteProgramsARB(1, &program);
  std::string text;
  LoadFile(fileName, text);
  glGenProgramsARB(1, &program);
  glBindProgramARB(target, program);
  glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()),
                     text.data());
  if (glGetError() == GL_INVALID_OPERATION) ReportProgramError();
}

} // namespace halvenor
