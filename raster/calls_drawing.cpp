#include "raster/calls.h"
#include "raster/names.h"
#include "raster/recorder.h"

#include <cmath>
#include <cstring>

namespace halvenor::raster::calls {
namespace {

void AddVertex(State& state, float x, float y, float z) {
  if (state.begun) state.vertices.push_back({x, y, z, state.color, state.s, state.t});
}

bool IsVisible(const std::array<float, 4>& position) {
  return std::fabs(position[0]) <= position[3] && std::fabs(position[1]) <= position[3] &&
         std::fabs(position[2]) <= position[3];
}

} // namespace

void glBegin(State& state, GLenum mode) {
  if (mode > GL_POLYGON) return state.Fail(GL_INVALID_ENUM);
  state.begun = true;
  state.mode = mode;
  state.vertices.clear();
}

void glEnd(State& state) {
  if (!state.begun) return state.Fail(GL_INVALID_OPERATION);
  state.begun = false;
  RecordPrimitives(state, state.mode, state.vertices);
}

void glVertex2f(State& state, GLfloat x, GLfloat y) {
  AddVertex(state, x, y, 0.0F);
}

void glVertex3f(State& state, GLfloat x, GLfloat y, GLfloat z) {
  AddVertex(state, x, y, z);
}

void glColor4f(State& state, GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
  state.color = {red, green, blue, alpha};
}

void glTexCoord2f(State& state, GLfloat s, GLfloat t) {
  state.s = s;
  state.t = t;
}

void glClear(State& state, GLbitfield mask) {
  if ((mask & ~GLbitfield{GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT |
                          GL_ACCUM_BUFFER_BIT}) != 0)
    return state.Fail(GL_INVALID_VALUE);
  if ((mask & GL_COLOR_BUFFER_BIT) != 0) RecordClear(state);
}

void glInterleavedArrays(State& state, GLenum format, GLsizei stride, const void* pointer) {
  if (stride < 0) return state.Fail(GL_INVALID_VALUE);
  if (format != GL_V2F) return state.Fail(GL_INVALID_ENUM);
  state.array = static_cast<const std::uint8_t*>(pointer);
  state.arrayStride = stride != 0 ? stride : static_cast<GLsizei>(2 * sizeof(float));
}

void glDrawArrays(State& state, GLenum mode, GLint first, GLsizei count) {
  if (mode > GL_POLYGON) return state.Fail(GL_INVALID_ENUM);
  if (first < 0 || count < 0) return state.Fail(GL_INVALID_VALUE);
  if (state.array == nullptr) return;
  state.vertices.clear();
  const std::uint8_t* place = state.array + std::ptrdiff_t{first} * state.arrayStride;
  for (GLsizei i = 0; i < count; ++i, place += state.arrayStride) {
    float at[2];
    std::memcpy(at, place, sizeof at);
    state.vertices.push_back({at[0], at[1], 0.0F, state.color, state.s, state.t});
  }
  RecordPrimitives(state, mode, state.vertices);
}

void glRasterPos3f(State& state, GLfloat x, GLfloat y, GLfloat z) {
  const auto position = state.Top().Apply(x, y, z);
  state.rasterIsValid = IsVisible(position);
  if (!state.rasterIsValid) return;
  for (std::size_t axis = 0; axis < 2; ++axis) {
    const auto half = static_cast<float>(state.viewport[axis + 2]) * 0.5F;
    state.rasterPosition[axis] =
        position[axis] * half + half + static_cast<float>(state.viewport[axis]);
  }
  state.rasterColor = state.color;
}

GLuint glGenLists(State& state, GLsizei count) {
  if (count < 0) {
    state.Fail(GL_INVALID_VALUE);
    return 0;
  }
  if (count == 0) return 0;
  GLuint base = 1;
  if (!state.lists.empty()) base = state.lists.rbegin()->first + 1;
  if (base > ~GLuint{0} - static_cast<GLuint>(count)) return 0;
  for (GLsizei i = 0; i < count; ++i)
    state.lists.emplace_hint(state.lists.end(), base + static_cast<GLuint>(i), nullptr);
  return base;
}

void glDeleteLists(State& state, GLuint list, GLsizei count) {
  if (count < 0) return state.Fail(GL_INVALID_VALUE);
  const auto begin = state.lists.lower_bound(list);
  const std::uint64_t end = std::uint64_t{list} + static_cast<std::uint64_t>(count);
  auto last = begin;
  while (last != state.lists.end() && last->first < end)
    ++last;
  state.lists.erase(begin, last);
}

void glCallList(State& state, GLuint list) {
  const auto found = state.lists.find(list);
  if (found == state.lists.end() || !found->second) return;
  if (state.begun) return state.Fail(GL_INVALID_OPERATION);
  RecordBitmap(state, *found->second);
}

} // namespace halvenor::raster::calls
