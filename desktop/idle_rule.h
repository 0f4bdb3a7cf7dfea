// When a picture that nobody misses may stand still.
#pragma once

#include <chrono>

namespace halvenor {

/// Rules only: told of what happens, with times of any one clock that never goes back.
class IdleRule {
public:
  using Time = std::chrono::milliseconds;

  /// How long the picture moves on after the last thing that stirred it. Trails lose a share of
  /// their light in each frame. At sixty frames a second even a share of 1 %, less than the
  /// autopilot chooses, leaves a thousandth after twelve seconds, which no screen shows; and texts
  /// over the picture are gone after three.
  static constexpr Time kRest{12'000};

  /// Sound, a key, another size, a title: whatever changes the picture.
  void Stir(Time now) { lastStir_ = now; }
  /// Whether the window is there to be seen at all.
  void SetSeen(bool seen) { seen_ = seen; }
  /// Whether another window, the visualizer's settings before all, is open beside the picture.
  void SetAccompanied(bool accompanied) { accompanied_ = accompanied; }
  /// Whether a person wants it drawn all the time.
  void SetKeepsDrawing(bool keeps) { keepsDrawing_ = keeps; }

  [[nodiscard]] bool Holds(Time now) const {
    if (keepsDrawing_) return false;
    if (!seen_) return true;
    return !accompanied_ && now - lastStir_ >= kRest;
  }

private:
  Time lastStir_{0};
  bool seen_ = true;
  bool accompanied_ = false;
  bool keepsDrawing_ = false;
};

} // namespace halvenor
