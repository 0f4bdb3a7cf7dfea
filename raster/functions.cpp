// The table's functions: each finds its thread's context, keeps GL's rule of what may stand between
// glBegin and glEnd, and turns missing memory into GL's error.
#include "raster/calls.h"
#include "raster/context.h"

#include <new>

namespace halvenor::raster {
namespace {

using gl_calls::Function;

template <Function F>
constexpr auto kCall = nullptr;
#define HALVENOR_RASTER_CALL(name, kinds)                                                          \
  template <>                                                                                      \
  constexpr auto kCall<Function::name> = &calls::name;
HALVENOR_GL_FUNCTIONS(HALVENOR_RASTER_CALL)
#undef HALVENOR_RASTER_CALL

constexpr bool IsAllowedInside(Function function) {
  switch (function) {
  case Function::glVertex2f:
  case Function::glVertex3f:
  case Function::glColor4f:
  case Function::glTexCoord2f:
  case Function::glCallList:
  case Function::glEnd:
  case Function::gluCheckExtension:
    return true;
  default:
    return false;
  }
}

template <Function F, class Signature>
struct Row;

template <Function F, class Result, class... Arguments>
struct Row<F, Result(Arguments...)> {
  static Result Call(Arguments... arguments) {
    Context* const context = Context::Current();
    if (context == nullptr) return Result();
    State& state = context->GetState();
    if constexpr (!IsAllowedInside(F)) {
      if (state.begun) {
        state.Fail(GL_INVALID_OPERATION);
        return Result();
      }
    }
    try {
      return kCall<F>(state, arguments...);
    } catch (const std::bad_alloc&) {
      state.Fail(GL_OUT_OF_MEMORY);
      return Result();
    }
  }
};

constexpr gl_calls::Table kTable = gl_calls::MakeTable<Row>();

} // namespace

const gl_calls::Table& Context::Functions() {
  return kTable;
}

} // namespace halvenor::raster
