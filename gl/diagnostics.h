// Reports of the GL code: length-prefixed strings for the debug log, and the two error reporters.
#pragma once

#include "platform/agl.h"

#include <cstdint>

namespace halvenor {

/// Longest text of a length-prefixed string, and the buffer that holds any such string.
inline constexpr int kPascalTextLength = 255;
inline constexpr int kPascalBufferSize = kPascalTextLength + 1;

/// Writes `cText`, cut at 255 characters, to `pascalText` (at least 256 bytes, or one more than the
/// text has) as a length-prefixed string.
void cstr2pstr(unsigned char* pascalText, const char* cText);

/// Formats like `printf` and sends the first 255 characters to the debug log.
[[gnu::format(printf, 1, 2)]] void DebugLog(const char* format, ...);

/// Reports "`message` : text of `error`", also for `AGL_NO_ERROR`. Callers that have just read the
/// error pass it, since reading clears it; the other form reads (and clears) the pending one.
void aglReportError(const char* message, GLenum error);
void aglReportError(const char* message);

/// Reads one pending OpenGL error and reports it, if there is one. Needs a current context.
void glCheckError();

} // namespace halvenor
