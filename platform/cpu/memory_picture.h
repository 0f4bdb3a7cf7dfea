// Pictures that are finished and lie in memory.
#pragma once

#include "platform/presenter.h"

#include <memory>

namespace halvenor::agl {

/// The picture of `picture.buffer`, which is read for that, with `size` pixels, each between the
/// nearest four. Null when there is no picture or no memory.
std::unique_ptr<Buffer> ScaledPicture(const Picture& picture, Size size);

} // namespace halvenor::agl
