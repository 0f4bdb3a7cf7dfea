// Reads program texts: the syntax of GL_ARB_vertex_program and GL_ARB_fragment_program with the
// instructions of `Opcode`, _SAT, swizzles, masks and negation; OPTION, ATTRIB, PARAM (arrays,
// too), TEMP, OUTPUT and ALIAS; program.local, program.env, state.matrix.mvp and constants. What
// the two extensions know beyond that is an error here.
#pragma once

#include "raster/programs/program.h"

#include <string>
#include <string_view>
#include <variant>

namespace halvenor::raster {

/// What GL gives as GL_PROGRAM_ERROR_POSITION_ARB and GL_PROGRAM_ERROR_STRING_ARB.
struct ProgramError {
  int position = 0; ///< byte where the first error was found, at most the size of the text
  std::string message;
};

/// Any bytes, any thread. Takes time proportional to the text and stops at the first error.
std::variant<Program, ProgramError> ParseProgram(ProgramTarget target, std::string_view text);

} // namespace halvenor::raster
