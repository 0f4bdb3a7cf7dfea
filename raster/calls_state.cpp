#include "raster/calls.h"

#include <GL/glext.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace halvenor::raster::calls {
namespace {

constexpr GLenum kSourceFactors[] = {GL_ZERO,
                                     GL_ONE,
                                     GL_DST_COLOR,
                                     GL_ONE_MINUS_DST_COLOR,
                                     GL_SRC_COLOR,
                                     GL_SRC_ALPHA,
                                     GL_ONE_MINUS_SRC_COLOR,
                                     GL_ONE_MINUS_SRC_ALPHA,
                                     GL_DST_ALPHA,
                                     GL_ONE_MINUS_DST_ALPHA,
                                     GL_SRC_ALPHA_SATURATE};
constexpr GLenum kDestinationFactors[] = {GL_ZERO,
                                          GL_ONE,
                                          GL_DST_COLOR,
                                          GL_ONE_MINUS_DST_COLOR,
                                          GL_SRC_COLOR,
                                          GL_SRC_ALPHA,
                                          GL_ONE_MINUS_SRC_COLOR,
                                          GL_ONE_MINUS_SRC_ALPHA,
                                          GL_DST_ALPHA,
                                          GL_ONE_MINUS_DST_ALPHA};

constexpr char kExtensions[] = "GL_ARB_fragment_program GL_ARB_vertex_program";

template <class Table>
bool Contains(const Table& table, GLenum value) {
  return std::find(std::begin(table), std::end(table), value) != std::end(table);
}

bool* FindSwitch(State& state, GLenum capability) {
  switch (capability) {
  case GL_BLEND:
    return &state.blends;
  case GL_TEXTURE_2D:
    return &state.textures;
  case GL_VERTEX_PROGRAM_ARB:
    return &state.vertexPrograms;
  case GL_FRAGMENT_PROGRAM_ARB:
    return &state.fragmentPrograms;
  default:
    return nullptr;
  }
}

void Switch(State& state, GLenum capability, bool on) {
  if (bool* const place = FindSwitch(state, capability))
    *place = on;
  else
    state.Fail(GL_INVALID_ENUM);
}

GLint ValueOf(State& state, GLenum name) {
  switch (name) {
  case GL_MAX_TEXTURE_SIZE:
    return kMaxSize;
  case GL_TEXTURE_BINDING_2D:
    return static_cast<GLint>(state.textureName);
  case GL_PROGRAM_ERROR_POSITION_ARB:
    return state.programError.position;
  case GL_BLEND_SRC:
    return static_cast<GLint>(state.blend.source);
  case GL_BLEND_DST:
    return static_cast<GLint>(state.blend.destination);
  case GL_MODELVIEW_STACK_DEPTH:
    return static_cast<GLint>(state.matrices.size());
  case GL_MAX_MODELVIEW_STACK_DEPTH:
    return static_cast<GLint>(State::kMaxMatrices);
  case GL_MATRIX_MODE:
    return GL_MODELVIEW;
  case GL_UNPACK_ALIGNMENT:
    return state.unpackAlignment;
  case GL_UNPACK_ROW_LENGTH:
    return state.unpackRowLength;
  case GL_UNPACK_SKIP_ROWS:
    return state.unpackSkipRows;
  case GL_UNPACK_SKIP_PIXELS:
    return state.unpackSkipPixels;
  case GL_CURRENT_RASTER_POSITION_VALID:
    return state.rasterIsValid ? GL_TRUE : GL_FALSE;
  default:
    if (const bool* const place = FindSwitch(state, name)) return *place ? GL_TRUE : GL_FALSE;
    state.Fail(GL_INVALID_ENUM);
    return -1;
  }
}

} // namespace

void glBlendFunc(State& state, GLenum source, GLenum destination) {
  if (!Contains(kSourceFactors, source) || !Contains(kDestinationFactors, destination))
    return state.Fail(GL_INVALID_ENUM);
  state.blend = {source, destination};
}

void glClearColor(State& state, GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha) {
  state.clearColor = {red, green, blue, alpha};
}

void glDisable(State& state, GLenum capability) {
  Switch(state, capability, false);
}

void glEnable(State& state, GLenum capability) {
  Switch(state, capability, true);
}

GLenum glGetError(State& state) {
  return std::exchange(state.error, GL_NO_ERROR);
}

void glGetIntegerv(State& state, GLenum name, GLint* values) {
  switch (name) {
  case GL_MAX_VIEWPORT_DIMS:
    values[0] = values[1] = kMaxSize;
    return;
  case GL_VIEWPORT:
    std::copy(state.viewport.begin(), state.viewport.end(), values);
    return;
  default:
    const GLenum before = std::exchange(state.error, GL_NO_ERROR);
    const GLint value = ValueOf(state, name);
    if (state.error == GL_NO_ERROR) *values = value;
    if (before != GL_NO_ERROR) state.error = before;
  }
}

const GLubyte* glGetString(State& state, GLenum name) {
  const auto text = [](const char* characters) {
    return reinterpret_cast<const GLubyte*>(characters);
  };
  switch (name) {
  case GL_VENDOR:
    return text("Halvenor");
  case GL_RENDERER:
    return text("Halvenor on the processor");
  case GL_VERSION:
    return text("1.4");
  case GL_EXTENSIONS:
    return text(kExtensions);
  case GL_PROGRAM_ERROR_STRING_ARB:
    return text(state.programError.message.c_str());
  default:
    state.Fail(GL_INVALID_ENUM);
    return nullptr;
  }
}

void glHint(State& state, GLenum target, GLenum mode) {
  constexpr GLenum kTargets[] = {GL_PERSPECTIVE_CORRECTION_HINT, GL_POINT_SMOOTH_HINT,
                                 GL_LINE_SMOOTH_HINT, GL_POLYGON_SMOOTH_HINT, GL_FOG_HINT};
  constexpr GLenum kModes[] = {GL_DONT_CARE, GL_FASTEST, GL_NICEST};
  if (!Contains(kTargets, target) || !Contains(kModes, mode)) state.Fail(GL_INVALID_ENUM);
}

void glLoadIdentity(State& state) {
  state.Top() = Matrix();
}

void glPixelStorei(State& state, GLenum name, GLint value) {
  switch (name) {
  case GL_UNPACK_ALIGNMENT:
  case GL_PACK_ALIGNMENT:
    if (value != 1 && value != 2 && value != 4 && value != 8) return state.Fail(GL_INVALID_VALUE);
    if (name == GL_UNPACK_ALIGNMENT) state.unpackAlignment = value;
    return;
  case GL_UNPACK_ROW_LENGTH:
  case GL_UNPACK_SKIP_ROWS:
  case GL_UNPACK_SKIP_PIXELS:
    if (value < 0) return state.Fail(GL_INVALID_VALUE);
    (name == GL_UNPACK_ROW_LENGTH  ? state.unpackRowLength
     : name == GL_UNPACK_SKIP_ROWS ? state.unpackSkipRows
                                   : state.unpackSkipPixels) = value;
    return;
  default:
    state.Fail(GL_INVALID_ENUM);
  }
}

void glPopMatrix(State& state) {
  if (state.matrices.size() == 1) return state.Fail(GL_STACK_UNDERFLOW);
  state.matrices.pop_back();
}

void glPushMatrix(State& state) {
  if (state.matrices.size() == State::kMaxMatrices) return state.Fail(GL_STACK_OVERFLOW);
  state.matrices.push_back(Matrix(state.Top()));
}

void glRotatef(State& state, GLfloat degrees, GLfloat x, GLfloat y, GLfloat z) {
  state.Top().Rotate(degrees, x, y, z);
}

void glScalef(State& state, GLfloat x, GLfloat y, GLfloat z) {
  state.Top().Scale(x, y, z);
}

void glTranslatef(State& state, GLfloat x, GLfloat y, GLfloat z) {
  state.Top().Translate(x, y, z);
}

void glViewport(State& state, GLint x, GLint y, GLsizei width, GLsizei height) {
  if (width < 0 || height < 0) return state.Fail(GL_INVALID_VALUE);
  state.viewport = {x, y, std::min(width, kMaxSize), std::min(height, kMaxSize)};
}

} // namespace halvenor::raster::calls
