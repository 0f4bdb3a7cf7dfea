// What the pictures of a context consist of: versions, made of what was recorded for them.
#pragma once

#include "raster/commands.h"
#include "raster/pixels.h"

#include <array>
#include <memory>
#include <vector>

namespace halvenor::raster {

/// What a picture shows from one clear to the next. Commands that sample it hold it, so that it is
/// drawn when it is first needed, and not at all when it never is. A version that others hold is
/// not changed any more.
struct Version {
  int width = 0;
  int height = 0;

  /// Where it is drawn. Empty until then for pictures that go straight to memory.
  Image image;
  bool isDrawn = false;    ///< `image` holds what was recorded before `commands`
  bool lacksAlpha = false; ///< alpha of `image` is not stored, being one everywhere
  bool opaque = false;     ///< alpha is one everywhere when `commands` have been drawn
  std::array<int, kPlanes> background{}; ///< what is there before the first command

  std::vector<Command> commands;
  std::size_t cost = 0; ///< segments in `commands`: what memory they take
  int depth = 0;        ///< how many versions have to be drawn before, one after the other

  [[nodiscard]] bool IsComplete() const { return isDrawn && commands.empty(); }
  [[nodiscard]] int Planes() const { return opaque ? kPlanes - 1 : kPlanes; }
};
using VersionPtr = std::shared_ptr<Version>;

/// What a target and the texture that shows it share.
struct Surface {
  int width = 0;
  int height = 0;
  bool isShown = false; ///< in a texture
  VersionPtr version;
  std::vector<Image> spares; ///< images of versions that are gone

  /// Begins a version that starts as one color; the one before goes, unless somebody holds it.
  /// False, and nothing changed, when there is no memory.
  bool Begin(const std::array<int, kPlanes>& background);
  /// The version to record into; one that others hold is copied first. Null without memory.
  Version* Open();
};

} // namespace halvenor::raster
