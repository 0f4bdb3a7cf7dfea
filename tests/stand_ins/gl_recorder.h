// The stand-in for OpenGL: defines the functions of gl_functions.h as recording ones.
#pragma once

#include <cstdint>

namespace halvenor::stand_ins {

/// Leaves `code` for a later `glGetError`; codes are read in the order in which they were left.
void InjectGlError(unsigned code);

/// Display lists that were given out and not deleted.
[[nodiscard]] std::int64_t LiveDisplayLists();

} // namespace halvenor::stand_ins
