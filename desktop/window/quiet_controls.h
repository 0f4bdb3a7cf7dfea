// Hides the pointer and the transport bar in full screen.
#pragma once

#include "desktop/window/drawing_area.h"
#include "desktop/window/stage.h"

#include <QtCore/QPoint>
#include <QtCore/QTimer>

namespace halvenor {

/// In full screen both disappear two seconds after the pointer came to rest. Motion brings the
/// pointer back, and motion near the lower edge shows a bar over the picture. In a window the
/// stage's own bar is shown as the user chose.
class QuietControls final : public QObject {
  Q_OBJECT

public:
  /// `bar` is the overlay of `stage` for full screen.
  QuietControls(DrawingArea& area, Stage& stage, QWidget& bar);

  void SetFullScreen(bool fullScreen);
  void SetBarWanted(bool wanted);

private:
  void Move(QPoint globalPosition);
  void Rest();
  DrawingArea& area_;
  Stage& stage_;
  QWidget& bar_;
  QTimer rest_;
  QPoint last_;
  bool fullScreen_ = false;
  bool barWanted_ = true;
};

} // namespace halvenor
