// Contexts that an OpenGL driver draws, through EGL.
#pragma once

#include "platform/backend.h"
#include "platform/driver/picture_scaler.h"
#include "platform/driver/render_target.h"

#include <EGL/egl.h>

#include <memory>

namespace halvenor::agl {

/// What the plug-in takes for a drawable's back buffer is a frame buffer object. A context of
/// somebody else's that is current on a thread is put back by `LetGo`.
class DriverBackend final : public Backend {
public:
  /// Made and current, or null with the reason logged and `error` set.
  static std::shared_ptr<DriverBackend> Make(const std::shared_ptr<WindowSystem>& system,
                                             GLenum& error);
  ~DriverBackend() override = default;

  [[nodiscard]] bool IsCurrent() const override;
  bool MakeCurrent() override;
  void LetGo() override;
  void Release() override;
  void End() override;
  [[nodiscard]] bool IsDriver() const override { return true; }
  void SetArea(Size size) override;
  void DropPort() override;
  std::unique_ptr<Buffer> MakeBuffer(Size size, bool depth) override;
  [[nodiscard]] GLint MostTextureSize() const override;
  void Bind(const Buffer* buffer) override;
  void CompileLists(GLuint base, const std::vector<Glyph>& glyphs) override;

private:
  DriverBackend(std::shared_ptr<WindowSystem> system, const EglDisplay& display)
      : Backend(std::move(system)), display_(display) {}

  bool Create();
  bool Bind(EGLSurface surface);
  [[nodiscard]] const gl_calls::Table& Calls() const override;
  [[nodiscard]] const gl_calls::Table& CallsWithoutDrawing() const override;
  std::unique_ptr<Presenter> MakePresenter(const HalvenorPort& port) override;
  bool UseSurface() override;
  Picture Scale(const Picture& picture, Size output) override {
    return scaler_.Scale(picture, output);
  }

  const EglDisplay& display_;
  EGLContext handle_ = EGL_NO_CONTEXT;
  std::unique_ptr<RenderTarget> nowhere_; ///< one pixel that is never shown
  PictureScaler scaler_;
};

} // namespace halvenor::agl
