// The stand-in for OpenGL: a table of recording functions, to which all calls go without a context
// of the real layer.
//
// It keeps which names of textures and programs were given out, what is bound, and the texts of
// programs. `glProgramStringARB` takes every text that begins with its target's header; another is
// `GL_INVALID_OPERATION`, as is one for which an error was injected, and its position and text can
// be read.
#pragma once

#include <cstdint>
#include <string>

namespace halvenor::stand_ins {

/// Leaves `code` for a later `glGetError`; codes are read in the order in which they were left.
void InjectGlError(unsigned code);

/// What `glGetString(GL_EXTENSIONS)` gives, until `Reset`: names with blanks between them. At the
/// start both ARB program extensions. Only while no other thread uses the stand-ins.
void SetExtensions(std::string list);

/// The next call of `glProgramStringARB` is refused with an error at `position` (0 and up).
void InjectProgramError(int position, std::string text);

/// The text that the program with this name was given last, also if it was refused or deleted.
[[nodiscard]] std::string ProgramText(unsigned program);

/// Names that were given out and not deleted.
[[nodiscard]] std::int64_t LiveDisplayLists();
[[nodiscard]] std::int64_t LiveTextures();
[[nodiscard]] std::int64_t LivePrograms();

} // namespace halvenor::stand_ins
