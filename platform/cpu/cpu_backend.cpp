#include "platform/cpu/cpu_backend.h"

#include "gl_calls/without_drawing.h"
#include "platform/agl.h"
#include "platform/agl_errors.h"
#include "platform/cpu/memory_picture.h"
#include "platform/gl_choice.h"

#include <utility>

namespace halvenor::agl {
namespace {

class CpuBuffer final : public Buffer {
public:
  static std::unique_ptr<CpuBuffer> Make(raster::Context& context, Size size) {
    raster::Target target = raster::Target::Make(size.width, size.height);
    if (!target) return nullptr;
    return std::unique_ptr<CpuBuffer>(new CpuBuffer(context, std::move(target), size));
  }

  [[nodiscard]] const raster::Target& Target() const { return target_; }

  GLenum ShowInBoundTexture() override {
    return context_.ShowInBoundTexture(target_) ? AGL_NO_ERROR : AGL_BAD_VALUE;
  }

  void Read(GLint x, GLint y, Size size, const Pixels& pixels) override {
    raster::Destination destination;
    destination.x = x;
    destination.y = y;
    destination.width = size.width;
    destination.height = size.height;
    destination.topRow = pixels.topRow;
    destination.stride = pixels.stride;
    destination.order = pixels.order == Pixels::Order::Rgba ? raster::Destination::Order::Rgba
                                                            : raster::Destination::Order::Bgra;
    if (!context_.Finish(target_, destination) && !std::exchange(loggedLoss_, true))
      Log("no memory to draw a picture; it is lost");
  }

private:
  CpuBuffer(raster::Context& context, raster::Target target, Size size)
      : Buffer(size), context_(context), target_(std::move(target)) {}

  raster::Context& context_;
  raster::Target target_;
  bool loggedLoss_ = false;
};

raster::Bitmap BitmapOf(const Glyph& glyph) {
  raster::Bitmap bitmap;
  bitmap.width = glyph.width;
  bitmap.height = glyph.height;
  bitmap.xOrigin = static_cast<float>(-glyph.left);
  bitmap.yOrigin = static_cast<float>(-glyph.bottom);
  bitmap.xMove = static_cast<float>(glyph.advance);
  bitmap.rows = glyph.rows.data();
  return bitmap;
}

} // namespace

CpuBackend::CpuBackend(std::shared_ptr<WindowSystem> system) : Backend(std::move(system)) {
  context_.SetThreads(CpuThreads());
}

bool CpuBackend::IsCurrent() const {
  return raster::Context::Current() == &context_;
}

bool CpuBackend::MakeCurrent() {
  if (!IsCurrent()) {
    if (isTaken_.exchange(true)) return false;
    raster::Context::MakeCurrent(&context_);
  }
  UseCalls();
  return true;
}

const gl_calls::Table& CpuBackend::Calls() const {
  return raster::Context::Functions();
}

const gl_calls::Table& CpuBackend::CallsWithoutDrawing() const {
  static const gl_calls::Table calls = gl_calls::WithoutDrawing(Calls());
  return calls;
}

void CpuBackend::LetGo() {
  if (!IsCurrent()) return;
  raster::Context::MakeCurrent(nullptr);
  isTaken_ = false;
}

void CpuBackend::Release() {
  Backend::Release();
  context_.BindNothing();
  scaled_.reset();
}

void CpuBackend::SetArea(Size size) {
  raster::Context::Functions().glViewport(0, 0, size.width, size.height);
}

std::unique_ptr<Buffer> CpuBackend::MakeBuffer(Size size, bool /*depth*/) {
  return CpuBuffer::Make(context_, size);
}

GLint CpuBackend::MostTextureSize() const {
  GLint side = 0;
  raster::Context::Functions().glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
  return side;
}

void CpuBackend::Bind(const Buffer* buffer) {
  if (buffer != nullptr)
    context_.Bind(static_cast<const CpuBuffer*>(buffer)->Target());
  else
    context_.BindNothing();
}

void CpuBackend::CompileLists(GLuint base, const std::vector<Glyph>& glyphs) {
  for (const Glyph& glyph : glyphs)
    context_.DefineBitmapList(base++, BitmapOf(glyph));
}

std::unique_ptr<Presenter> CpuBackend::MakePresenter(const HalvenorPort& port) {
  auto presenter = System().MakeMemoryPresenter(port);
  if (presenter == nullptr) Log("the window takes no pictures from memory");
  return presenter;
}

Picture CpuBackend::Scale(const Picture& picture, Size output) {
  Picture scaled = picture;
  scaled.port = output;
  const Fitted fitted = FitPicture(picture, output);
  scaled_ = ScaledPicture(picture, fitted.size);
  if (scaled_ == nullptr) return scaled;
  scaled.buffer = scaled_.get();
  scaled.x = fitted.x;
  scaled.y = fitted.y;
  return scaled;
}

} // namespace halvenor::agl
