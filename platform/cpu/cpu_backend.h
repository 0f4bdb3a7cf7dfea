// Contexts that this program draws itself, on the processor.
#pragma once

#include "platform/backend.h"
#include "raster/context.h"

#include <atomic>
#include <memory>

namespace halvenor::agl {

/// Needs neither EGL nor a driver, and leaves alone whatever else is current on a thread.
class CpuBackend final : public Backend {
public:
  /// Not yet current. The number of threads is that of `CpuThreads` (gl_choice.h).
  explicit CpuBackend(std::shared_ptr<WindowSystem> system);

  [[nodiscard]] bool IsCurrent() const override;
  bool MakeCurrent() override;
  void LetGo() override;
  void Release() override;
  void End() override {}
  [[nodiscard]] bool IsDriver() const override { return false; }
  void SetArea(Size size) override;
  std::unique_ptr<Buffer> MakeBuffer(Size size, bool depth) override;
  [[nodiscard]] GLint MostTextureSize() const override;
  void Bind(const Buffer* buffer) override;
  void CompileLists(GLuint base, const std::vector<Glyph>& glyphs) override;

private:
  [[nodiscard]] const gl_calls::Table& Calls() const override;
  [[nodiscard]] const gl_calls::Table& CallsWithoutDrawing() const override;
  std::unique_ptr<Presenter> MakePresenter(const HalvenorPort& port) override;
  Picture Scale(const Picture& picture, Size output) override;

  raster::Context context_;
  std::atomic<bool> isTaken_ = false; ///< current on some thread
  std::unique_ptr<Buffer> scaled_;
};

} // namespace halvenor::agl
