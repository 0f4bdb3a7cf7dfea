// A button with one of the signs that every player has.
#pragma once

#include <QtWidgets/QToolButton>

namespace halvenor {

/// Drawn in the colours of the theme, at any scale.
class MediaButton final : public QToolButton {
  Q_OBJECT

public:
  enum class Sign { Play, Pause, Previous, Next, Loud, Muted };

  /// Runs `action` when clicked, and is enabled as it is; `name` is for those who cannot see the
  /// sign, and for its tool tip.
  MediaButton(Sign sign, QAction& action, const QString& name);

  void SetSign(Sign sign, const QString& name);

  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  Sign sign_;
};

} // namespace halvenor
