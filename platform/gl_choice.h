// Who draws the plug-in's OpenGL: the driver that is installed, or this program on the processor.
#pragma once

#include "platform/export.h"

#include <optional>
#include <string_view>

namespace halvenor {

enum class GlChoice {
  Automatic, ///< the driver of a graphics card; the processor where there is none
  Driver,
  Cpu,
};

/// "cpu", "driver", "auto".
HALVENOR_PLATFORM std::optional<GlChoice> GlChoiceFrom(std::string_view name);

/// Chooses for contexts that are made from now on. At the start, and again with `Automatic`, the
/// environment variable HALVENOR_GL chooses, and without a valid one it is automatic. Any thread.
HALVENOR_PLATFORM void ChooseGl(GlChoice choice);
[[nodiscard]] HALVENOR_PLATFORM GlChoice ChosenGl();

/// How many threads draw where the processor does: HALVENOR_THREADS, 0 (without a valid one) for as
/// many as there are cores.
[[nodiscard]] HALVENOR_PLATFORM int CpuThreads();

} // namespace halvenor
