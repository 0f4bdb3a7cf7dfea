// Who draws for a context: an OpenGL driver, or this program on the processor.
#pragma once

#include "gl_calls/gl_table.h"
#include "platform/buffer.h"
#include "platform/glyph_bitmaps.h"
#include "platform/presenter.h"
#include "platform/window_system.h"

#include <memory>
#include <vector>

namespace halvenor::agl {

/// One context of OpenGL, and what shows its pictures in a port. Members must be called with it
/// current unless they say otherwise. Errors are those of agl.h. Threads: see agl.h.
class Backend {
public:
  explicit Backend(std::shared_ptr<WindowSystem> system) : system_(std::move(system)) {}
  virtual ~Backend() = default;
  Backend(const Backend&) = delete;
  Backend& operator=(const Backend&) = delete;

  /// Whether this layer made it current on the calling thread and nobody displaced it since.
  [[nodiscard]] virtual bool IsCurrent() const = 0;
  /// Makes it current on this thread, with its port if it has one, and sends the plug-in's calls to
  /// it. The first of a kind on a thread remembers what was current there; from one of another kind
  /// of backend the caller lets go first. False when it is current on another thread.
  virtual bool MakeCurrent() = 0;
  /// Lets go of it, and puts back what was current before.
  virtual void LetGo() = 0;
  /// Lets go of the port and of all that it keeps itself. Buffers are gone before.
  virtual void Release() { DropPort(); }
  /// Ends it, after `Release`. It is current nowhere.
  virtual void End() = 0;

  [[nodiscard]] virtual bool IsDriver() const = 0;

  /// Whether the plug-in's calls draw, as at the start; otherwise they do all but that.
  void SetDraws(bool draws);

  /// The viewport of a new context: all of a port of this size.
  virtual void SetArea(Size size) = 0;

  /// Whether ports like `port` can be shown by it. Need not be current.
  [[nodiscard]] bool Serves(const HalvenorPort& port) const { return system_->Serves(port); }
  /// Shows pictures in `port` from now on; false, with the reason logged, when it cannot be drawn
  /// to.
  bool UsePort(const HalvenorPort& port);
  [[nodiscard]] bool HasPort() const { return presenter_ != nullptr; }
  /// Stops showing pictures in the port.
  virtual void DropPort() { presenter_.reset(); }
  /// Shows `picture`, scaled to `output` unless that is empty or the port's size. Afterwards which
  /// buffer is bound is undefined.
  void Present(const Picture& picture, Size output);

  /// A cleared buffer of 8-bit RGBA at least and, when wanted, 24-bit depth. Null when it cannot be
  /// made; then no GL error is left pending. May change which buffer is bound.
  virtual std::unique_ptr<Buffer> MakeBuffer(Size size, bool depth) = 0;
  /// The most pixels that a texture may be wide or high.
  [[nodiscard]] virtual GLint MostTextureSize() const = 0;
  /// Directs drawing and reading to `buffer`, or to nowhere when it is null.
  virtual void Bind(const Buffer* buffer) = 0;

  /// Fills the display lists from `base` with characters. May set unpack state.
  virtual void CompileLists(GLuint base, const std::vector<Glyph>& glyphs) = 0;

protected:
  [[nodiscard]] WindowSystem& System() const { return *system_; }
  [[nodiscard]] const Presenter* PortPresenter() const { return presenter_.get(); }
  /// Sends the calling thread's calls here.
  void UseCalls() const;

private:
  /// What the plug-in's calls go to, and the same without drawing; for ever.
  [[nodiscard]] virtual const gl_calls::Table& Calls() const = 0;
  [[nodiscard]] virtual const gl_calls::Table& CallsWithoutDrawing() const = 0;
  virtual std::unique_ptr<Presenter> MakePresenter(const HalvenorPort& port) = 0;
  /// Makes the new presenter's surface the one that is drawn with.
  virtual bool UseSurface() { return true; }
  /// `picture` as it fits a port of the size `output`; valid until the next call. Where there is no
  /// memory for that, the picture unscaled in the corner of such a port.
  virtual Picture Scale(const Picture& picture, Size output) = 0;

  std::shared_ptr<WindowSystem> system_;
  std::unique_ptr<Presenter> presenter_;
  bool draws_ = true;
};

} // namespace halvenor::agl
