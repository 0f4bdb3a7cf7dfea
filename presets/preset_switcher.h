// Smooth changes from look to look, and the clockwork that makes them by itself.
#pragma once

#include "protocol/settings.h"

#include <optional>

namespace halvenor {

/// Decides what the settings block becomes next. It has no clock and touches no record: whoever
/// owns it calls `Advance` often (60 times a second while `IsBlending`) with the present block and
/// the time in seconds of any clock that never goes back, and writes what it is told.
///
/// A look that somebody else changed, by hand, by a key or by the autopilot, is never written over:
/// the blend ends where it stands. The autopilot and switching exclude each other: whichever began
/// last wins.
class PresetSwitcher {
public:
  enum class Event {
    None,
    WantsPreset, ///< the interval has passed: call `BlendTo` with the next preset's look
    Interrupted, ///< somebody changed the look: the blend ended; switching goes on at its next turn
    AutopilotTookOver ///< the autopilot was started: switching has stopped
  };
  struct Step {
    std::optional<Settings> write; ///< the block to store in the record
    Event event = Event::None;
  };

  /// Starts switching every `interval` seconds, the first time after one interval. The next step
  /// turns the autopilot off.
  void Start(double interval);
  /// Ends switching, and the blend where it stands.
  void Stop();
  [[nodiscard]] bool IsSwitching() const;
  void SetInterval(double interval);

  /// From the next step on goes from the look that is there then to `target` within `seconds`; 0:
  /// at once. Counts as a turn: the interval begins anew. Ends the autopilot, which would move it
  /// on.
  void BlendTo(const Settings& target, double seconds);
  [[nodiscard]] bool IsBlending() const;
  /// Ends the blend where it stands; switching goes on.
  void EndBlend();

  Step Advance(const Settings& present, double now);

private:
  bool YieldsTo(const Settings& present, Event& event);
  void AdvanceBlend(Settings& block, double now);
  bool IsTurn(double now);

  struct Blend {
    Settings target;
    double seconds;
    std::optional<double> began; ///< set by the first step
    Settings from;
    Settings written; ///< what the last step wrote
  };
  std::optional<Blend> blend_;
  std::optional<double> interval_;
  std::optional<double> lastTurn_;
  bool endAutopilot_ = false;
};

} // namespace halvenor
