// Holds the plug-in's clock while the picture may stand still.
#pragma once

#include "desktop/idle_rule.h"
#include "desktop/player.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

namespace halvenor {

/// While it holds, nothing is drawn, no timer of its own runs and the trails stay as they are. It
/// decides from the event loop only, so outside any message.
class IdleHold final : public QObject {
  Q_OBJECT

public:
  /// `window` is the one around the picture.
  IdleHold(QWidget& window, const Player& player);
  ~IdleHold() override;

  void SetKeepsDrawing(bool keeps);
  /// Lets go, now and for the time that the picture needs to come to rest.
  void Stir();
  /// Lets go for good.
  void End();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void LookSoon();
  void Look();
  [[nodiscard]] bool IsSeen() const;
  [[nodiscard]] bool IsAccompanied() const;
  [[nodiscard]] IdleRule::Time Now() const { return IdleRule::Time(clock_.elapsed()); }

  QWidget& window_;
  QPointer<QWindow> nativeWindow_; ///< watched for what the window system says of it
  const Player& player_;
  IdleRule rule_;
  QElapsedTimer clock_;
  QTimer timer_; ///< runs while frames are drawn
  bool ended_ = false;
};

} // namespace halvenor
