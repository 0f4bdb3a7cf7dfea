#include "raster/surface.h"

#include "raster/resampling.h"

#include <algorithm>
#include <utility>

namespace halvenor::raster {
namespace {

constexpr std::size_t kMostSpares = 2;

VersionPtr MakeVersion(Surface& surface) {
  auto version = std::make_shared<Version>();
  version->width = surface.width;
  version->height = surface.height;
  if (!surface.isShown) return version;
  // A picture that others look at needs a place; running out of memory must show here.
  if (!surface.spares.empty()) {
    version->image = std::move(surface.spares.back());
    surface.spares.pop_back();
  } else {
    version->image = Image(surface.width, surface.height);
  }
  return version->image ? version : nullptr;
}

void Recycle(Surface& surface, VersionPtr& version) {
  if (version && version.use_count() == 1 && version->image && surface.spares.size() < kMostSpares)
    surface.spares.push_back(std::move(version->image));
  version.reset();
}

} // namespace

bool Surface::Begin(const std::array<int, kPlanes>& background) {
  VersionPtr made = MakeVersion(*this);
  if (!made) return false;
  made->background = background;
  made->opaque = background[3] == kOne;
  Recycle(*this, version);
  version = std::move(made);
  return true;
}

Version* Surface::Open() {
  if (!version && !Begin({})) return nullptr;
  if (version.use_count() == 1) return version.get();
  VersionPtr made = MakeVersion(*this);
  if (!made) return nullptr;
  const Box all = {0, 0, width, height};
  Quad copy;
  copy.box = all;
  copy.sources.push_back(WholePicture(version));
  copy.scale.fill(kFactorOne);
  made->opaque = version->opaque;
  made->depth = version->depth + 1;
  made->commands.emplace_back(std::move(copy));
  version = std::move(made);
  return version.get();
}

} // namespace halvenor::raster
