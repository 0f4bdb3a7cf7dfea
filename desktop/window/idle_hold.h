// Holds the plug-in's clock while the picture may stand still, which saves the work of drawing it.
#pragma once

#include "desktop/playback/player.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <chrono>

namespace halvenor {

/// When the picture may stand still. Pure rules: the caller passes times of any monotonic clock.
class IdleRule {
public:
  using Time = std::chrono::milliseconds;

  /// How long the picture goes on after the last thing that changed it. Trails lose a share of
  /// their brightness in each frame: at 60 frames a second even a share of 1 %, less than the
  /// autopilot chooses, leaves a thousandth after twelve seconds, which no screen shows; and texts
  /// over the picture are gone after three.
  static constexpr Time kRest{12'000};

  /// Something changes the picture: sound, a key, a new size, a title.
  void Stir(Time now) { lastStir_ = now; }
  /// Whether the window is visible at all.
  void SetSeen(bool seen) { seen_ = seen; }
  /// Whether another window is open beside the picture, such as the visualizer's settings.
  void SetAccompanied(bool accompanied) { accompanied_ = accompanied; }
  /// Whether the user wants it drawn all the time.
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

/// While it holds the clock, nothing is drawn, its timer rests and the trails stay as they are. It
/// decides only from the event loop, so outside any message.
class IdleHold final : public QObject {
  Q_OBJECT

public:
  /// `window` is the one around the picture.
  IdleHold(QWidget& window, const Player& player);
  ~IdleHold() override;

  void SetKeepsDrawing(bool keeps);
  /// Releases the clock, for the time that the picture needs to come to rest.
  void Stir();
  /// Releases the clock for good.
  void End();

signals:
  /// It has looked at whether the window is visible at all; comes again and again.
  void Looked(bool seen);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void LookSoon();
  void Look();
  [[nodiscard]] bool IsSeen() const;
  [[nodiscard]] bool IsAccompanied() const;
  [[nodiscard]] IdleRule::Time Now() const { return IdleRule::Time(clock_.elapsed()); }

  QWidget& window_;
  QPointer<QWindow> nativeWindow_; ///< whose events are watched
  const Player& player_;
  IdleRule rule_;
  QElapsedTimer clock_;
  QTimer timer_; ///< runs while frames are drawn
  bool ended_ = false;
};

} // namespace halvenor
