#include "raster/context.h"

#include "raster/recorder.h"
#include "raster/state.h"

#include <new>
#include <utility>

namespace halvenor::raster {
namespace {

thread_local Context* current = nullptr;

std::vector<BitmapList::Run> RunsOf(const Bitmap& bitmap) {
  std::vector<BitmapList::Run> runs;
  const int stride = (bitmap.width + 7) / 8;
  for (int y = 0; y < bitmap.height; ++y) {
    const std::uint8_t* const row = bitmap.rows + std::ptrdiff_t{stride} * y;
    const auto isSet = [row](int x) { return (row[x / 8] >> (7 - x % 8) & 1) != 0; };
    for (int x = 0; x < bitmap.width; ++x) {
      if (!isSet(x)) continue;
      const int begin = x;
      while (x < bitmap.width && isSet(x))
        ++x;
      runs.push_back({begin, y, x - begin});
    }
  }
  return runs;
}

} // namespace

Target::Target() = default;
Target::~Target() = default;
Target::Target(Target&& other) noexcept = default;
Target& Target::operator=(Target&& other) noexcept = default;

Target Target::Make(int width, int height) {
  Target target;
  if (width < 1 || height < 1 || width > kMaxSize || height > kMaxSize) return target;
  try {
    auto surface = std::make_shared<Surface>();
    surface->width = width;
    surface->height = height;
    if (surface->Begin({})) target.surface_ = std::move(surface);
  } catch (const std::bad_alloc&) {
  }
  return target;
}

int Target::Width() const {
  return surface_ ? surface_->width : 0;
}

int Target::Height() const {
  return surface_ ? surface_->height : 0;
}

Context::Context() : state_(std::make_unique<State>()) {}

Context::~Context() {
  if (current == this) current = nullptr;
}

Context* Context::Current() {
  return current;
}

void Context::MakeCurrent(Context* context) {
  current = context;
}

void Context::SetThreads(int threads) {
  state_->executor.SetThreads(threads);
}

void Context::Bind(const Target& target) {
  state_->target = target.surface_;
}

void Context::BindNothing() {
  state_->target.reset();
}

bool Context::ShowInBoundTexture(const Target& target) {
  if (!target || state_->textureName == 0) return false;
  Surface& surface = *target.surface_;
  const bool before = std::exchange(surface.isShown, true);
  try {
    if (!surface.Begin({})) {
      surface.isShown = before;
      return false;
    }
  } catch (const std::bad_alloc&) {
    surface.isShown = before;
    return false;
  }
  state_->texture->levels.clear();
  state_->texture->shown = target.surface_;
  return true;
}

bool Context::Finish(const Target& target, const Destination& destination) {
  if (!target) return false;
  Surface& surface = *target.surface_;
  try {
    if (!surface.version && !surface.Begin({})) return false;
    if (surface.isShown && !state_->executor.Draw(*surface.version)) return false;
    const bool isDone = state_->executor.DrawTo(*surface.version, destination);
    if (!surface.isShown) surface.Begin({});
    return isDone;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void Context::Drop(const Target& target) {
  if (!target || target.surface_->isShown) return;
  try {
    target.surface_->Begin({});
  } catch (const std::bad_alloc&) {
    state_->Fail(GL_OUT_OF_MEMORY);
  }
}

void Context::DefineBitmapList(GLuint list, const Bitmap& bitmap) {
  auto made = std::make_shared<BitmapList>();
  made->runs = RunsOf(bitmap);
  made->xOrigin = bitmap.xOrigin;
  made->yOrigin = bitmap.yOrigin;
  made->xMove = bitmap.xMove;
  made->yMove = bitmap.yMove;
  state_->lists[list] = std::move(made);
}

} // namespace halvenor::raster
