// What the stand-ins for OpenGL, for the context layer and for bundles have in common: one log of
// the calls in their order, faults, hooks and the list of misuses.
//
// A suite links `halvenor_gl_stand_ins` instead of the real libraries. Functions are named by their
// C names ("glEnable", "aglSwapBuffers", "GetFNum"); a name that no stand-in has ends the program.
// Everything here may be called on any thread unless it says otherwise.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor::stand_ins {

/// One recorded call.
struct Call {
  std::string_view function; ///< "glColor4f"
  /// "glColor4f(1, 1, 1, 0.5)". Numbers have six digits; known enumerants go by their names
  /// ("glEnable(GL_BLEND)"), contexts, formats, pbuffers and ports are numbered in the order in
  /// which they were made or first seen ("aglSetDrawable(context 1, port 1)"), names to delete and
  /// strings are shown, other pointers are "null" or "pointer".
  std::string text;
  /// The arguments as they came: a number each, contexts, formats and ports by their number (0 for
  /// null), other pointers by their address, and each integer of a list that an argument points at.
  std::vector<double> arguments;
};

/// Everything recorded since the last `ClearCalls` or `Reset`; its texts; and those of one
/// function.
[[nodiscard]] std::vector<Call> Calls();
[[nodiscard]] std::vector<std::string> CallTexts();
[[nodiscard]] std::vector<Call> CallsOf(std::string_view function);
void ClearCalls();
/// "a; b; c" as the texts of three calls; a last "; " may follow.
[[nodiscard]] std::vector<std::string> Listed(std::string_view calls);

/// How often `function` was called since `Reset`; counts in silence, too.
[[nodiscard]] std::uint64_t CallCount(std::string_view function);

/// In silence nothing is recorded and nothing allocated, and no call puts one thread's work in
/// order with another's: for benchmarks and the thread sanitizer. Counts, faults, hooks and misuses
/// work on.
void SetSilent(bool silent);

inline constexpr std::uint64_t kAllCalls = std::numeric_limits<std::uint64_t>::max();

/// From the `first`-th call counted from now (1 is the next one) on, `count` calls of `function`
/// have no effect but a pending `error` (an AGL error for the context layer, a GL error for
/// OpenGL) and a false, null or 0 result. `count` 0 takes the fault away.
void Fail(std::string_view function, unsigned error, std::uint64_t first = 1,
          std::uint64_t count = kAllCalls);

/// `hook` runs at the start of every call of `function`, on the calling thread, for example to hold
/// a frame up; an empty one takes the former away (a call on another thread may still be in it).
void OnCall(std::string_view function, std::function<void()> hook);

/// Uses that the real libraries do not promise to survive, one line each: OpenGL without a current
/// context, a call that is not allowed between glBegin and glEnd, names and pbuffers that are not
/// there any more, a context that is current on two threads, used after its end, destroyed while
/// another thread has it or while it has pbuffers, or left current by a thread that ended.
[[nodiscard]] std::vector<std::string> Misuses();

/// Everything as at the start: no calls, faults, hooks, misuses, errors or objects; not silent;
/// nothing current on the calling thread. Only while no other thread uses the stand-ins.
void Reset();

} // namespace halvenor::stand_ins
