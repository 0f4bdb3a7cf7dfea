// A button with one of the usual symbols of players.
#pragma once

#include <QtWidgets/QToolButton>

namespace halvenor {

/// Drawn in the colors of the theme, at any scale.
class MediaButton final : public QToolButton {
  Q_OBJECT

public:
  enum class Sign { Play, Pause, Previous, Next, Loud, Muted };

  /// Triggers `action` when clicked, and is enabled while that is; `name` is for screen readers and
  /// for the tool tip.
  MediaButton(Sign sign, QAction& action, const QString& name);

  void SetSign(Sign sign, const QString& name);

  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  Sign sign_;
};

} // namespace halvenor
