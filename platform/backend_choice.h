// Which backend draws for a new context.
#pragma once

#include "platform/backend.h"

#include <memory>

namespace halvenor::agl {

/// A new backend on `system`, current on the calling thread, where none of this layer's is current
/// now: the one that gl_choice.h tells, and the processor where no driver can be used unless a
/// driver is what was asked for. The debug log says which and why. Null with `error` set.
std::shared_ptr<Backend> MakeBackend(const std::shared_ptr<WindowSystem>& system, GLenum& error);

} // namespace halvenor::agl
