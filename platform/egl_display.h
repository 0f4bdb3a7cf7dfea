// The EGL display behind a port.
#pragma once

#include "platform/ports.h"

#include <EGL/egl.h>

#include <memory>
#include <string>

namespace halvenor::agl {

/// An initialised EGL display that can make OpenGL contexts without a config and make them current
/// without a surface. Shared by all contexts on one window system; the last owner releases it, as
/// far as it is this layer's to release. Any thread.
class EglDisplay {
public:
  /// The display for `port`, or for offscreen drawing when it is null. Null when there is none;
  /// the reason is logged.
  static std::shared_ptr<EglDisplay> For(const HalvenorPort* port);

  virtual ~EglDisplay() = default;
  EglDisplay(const EglDisplay&) = delete;
  EglDisplay& operator=(const EglDisplay&) = delete;

  /// Whether ports like `port` can be shown by contexts of this display.
  [[nodiscard]] virtual bool Serves(const HalvenorPort& port) const = 0;

  [[nodiscard]] EGLDisplay Handle() const { return handle_; }
  /// Whether it draws on the processor, where finished frames are in memory anyway.
  [[nodiscard]] bool IsSoftware() const { return software_; }

protected:
  EglDisplay() = default;

  /// Takes over the platform display of `native`; false, with the reason logged, when it cannot be
  /// initialised or lacks what this layer needs.
  bool Initialise(EGLenum platform, void* native);
  /// Whether it was `Initialise` that brought the display to life, not somebody else before.
  [[nodiscard]] bool IsFirstUser() const { return firstUser_; }
  void Terminate();

private:
  EGLDisplay handle_ = EGL_NO_DISPLAY;
  bool firstUser_ = false;
  bool software_ = false;
};

/// Whether the EGL display, or the client for `EGL_NO_DISPLAY`, has the extension.
bool HasEglExtension(EGLDisplay display, const char* name);

} // namespace halvenor::agl
