#include "raster/programs/program_text.h"

#include "raster/programs/parser.h"
#include "raster/programs/simplify.h"
#include "raster/programs/taps.h"

namespace halvenor::raster {

std::variant<Program, ProgramError> ParseProgram(ProgramTarget target, std::string_view text) {
  const std::string_view header = target == ProgramTarget::Vertex ? "!!ARBvp1.0" : "!!ARBfp1.0";
  if (text.substr(0, header.size()) != header)
    return ProgramError{0, "line 1: the text does not begin with \"" + std::string(header) + '"'};
  auto parsed = Parser(target, text, header.size()).Parse();
  if (auto* program = std::get_if<Program>(&parsed)) {
    Simplify(*program);
    program->isTapsForm = HasTapsForm(*program);
  }
  return parsed;
}

} // namespace halvenor::raster
