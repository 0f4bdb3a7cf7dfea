// What becomes of a finished picture.
#pragma once

#include "platform/buffer.h"
#include "platform/ports.h"

#include <memory>

namespace halvenor::agl {

/// A finished picture and its place in a port of the size `port`: its bottom-left corner is `x`,
/// `y` pixels from the port's. It may reach over the port's edges. Without a buffer there is no
/// picture, and the port is black.
struct Picture {
  Buffer* buffer = nullptr;
  GLint x = 0;
  GLint y = 0;
  Size port;
  GLint surfaceScale = 0; ///< the buffer scale of a Wayland surface; 0: whatever it is
};

/// How large a picture of `port` becomes in a port of the size `output`, and where: as large as
/// fits, its proportions kept, in the middle.
struct Fitted {
  Size size;
  GLint x = 0;
  GLint y = 0;

  bool operator==(const Fitted&) const = default;
};

[[nodiscard]] Fitted FitPicture(const Picture& picture, Size output);

/// The part of a picture that lies inside its port, in the picture and in the port.
struct VisiblePart {
  GLint pictureX = 0;
  GLint pictureY = 0;
  GLint portX = 0;
  GLint portY = 0;
  Size size; ///< empty when nothing is visible

  bool operator==(const VisiblePart&) const = default;
};

[[nodiscard]] VisiblePart ClipToPort(const Picture& picture);

/// Shows finished pictures in one port. Used by one thread at a time, with the context current.
class Presenter {
public:
  Presenter() = default;
  virtual ~Presenter() = default;
  Presenter(const Presenter&) = delete;
  Presenter& operator=(const Presenter&) = delete;

  /// The EGL surface that the context has to be current with; null where pictures are read.
  [[nodiscard]] virtual void* Surface() const { return nullptr; }

  /// Shows the picture; what of the port is outside it is black. Never waits for the display's
  /// refresh. May change which buffer is bound, and no other GL state.
  virtual void Present(const Picture& picture) = 0;
};

} // namespace halvenor::agl
