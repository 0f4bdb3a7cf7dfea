// The window systems behind ports: X11, Wayland, and none for offscreen ports.
#pragma once

#include "platform/driver/egl_display.h"
#include "platform/presenter.h"

#include <memory>
#include <mutex>

namespace halvenor::agl {

/// A connection to a window system. Shared by all contexts that show there; the last owner releases
/// what is this layer's. Any thread.
class WindowSystem {
public:
  /// The one behind `port`, or for offscreen drawing when it is null. Null when there is no
  /// connection; the reason is logged.
  static std::shared_ptr<WindowSystem> For(const HalvenorPort* port);
  /// Whether `port` names something to draw to.
  static bool IsDrawable(const HalvenorPort& port);

  WindowSystem() = default;
  virtual ~WindowSystem() = default;
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;

  /// Whether ports like `port` can be shown here.
  [[nodiscard]] virtual bool Serves(const HalvenorPort& port) const = 0;

  /// Whether windows here can be shown pictures from memory, as far as that is known before there
  /// is a window.
  [[nodiscard]] virtual bool TakesMemory() { return true; }
  /// Shows pictures in `port`, which is served here, from memory. Null when that cannot be done; a
  /// window that is gone is logged.
  virtual std::unique_ptr<Presenter> MakeMemoryPresenter(const HalvenorPort& port) = 0;

  /// The EGL display here, null, with the reason logged, when there is none. After `LoadDriver`.
  const EglDisplay* Egl();
  /// Shows pictures in `port` through EGL; null, with the reason logged, when it cannot be drawn
  /// to. The context that will draw must be current.
  virtual std::unique_ptr<Presenter> MakeEglPresenter(const HalvenorPort& port) = 0;

protected:
  /// Initializes `display` as this window system's.
  virtual bool OpenEgl(EglDisplay& display) = 0;
  /// What `Egl` opened; not initialized when it did not.
  EglDisplay egl_;

private:
  std::mutex lock_;
  bool hasEgl_ = false;
};

} // namespace halvenor::agl
