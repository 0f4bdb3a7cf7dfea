// Scales finished pictures to the size of their window.
#pragma once

#include "platform/driver/render_target.h"
#include "platform/presenter.h"

namespace halvenor::agl {

/// Holds one target. The context must be current wherever one is used or destroyed.
class PictureScaler {
public:
  /// `picture` as it fits a port of the size `output`; valid until the next call. Where there is no
  /// memory for that, the picture unscaled in the corner of such a port. May change which frame
  /// buffer is bound, and no other GL state.
  Picture Scale(const Picture& picture, Size output);

  /// Lets go of the target.
  void Reset() { *this = PictureScaler(); }

private:
  std::unique_ptr<RenderTarget> target_;
  Size triedSize_; ///< the size for which `target_` was made, or could not be
};

} // namespace halvenor::agl
