// Which frames of a live show are worth a picture.
#pragma once

#include <cstdint>

namespace halvenor::agl {

/// Trails fade and flow by the frame, so they look right only at the rate that they were made for,
/// and pictures take most of the time. Where pictures make frames late, some are left out: the look
/// stays, and only smoothness suffers. Pure rules: times are nanoseconds of any one clock.
class PicturePace {
public:
  /// A show with 50 frames a second is in time.
  static constexpr std::uint64_t kInterval = 20'000'000;
  /// At most this many frames in a row have no picture, so that something still moves.
  static constexpr int kMostSkipped = 3;

  /// Whether a frame that begins at `now` is to have its picture.
  [[nodiscard]] bool HasTime(std::uint64_t now) const {
    return behind_ < kInterval || skipped_ >= kMostSkipped || IsPause(now);
  }

  /// A frame was drawn from `begin` to `end`.
  void Add(std::uint64_t begin, std::uint64_t end, bool hasPicture);

private:
  /// Whoever waits that long between frames does not want more of them.
  [[nodiscard]] bool IsPause(std::uint64_t begin) const { return begin - lastEnd_ >= kInterval; }

  std::uint64_t lastEnd_ = 0; ///< of the frame before
  std::uint64_t behind_ = 0;  ///< by how much frames are late
  int skipped_ = 0;           ///< frames without a picture since the last one with it
};

} // namespace halvenor::agl
