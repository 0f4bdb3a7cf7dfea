// What gets out of the picture's way in full screen: the pointer and the transport bar.
#pragma once

#include "desktop/drawing_area.h"
#include "desktop/stage.h"

#include <QtCore/QPoint>
#include <QtCore/QTimer>

namespace halvenor {

/// In full screen both are gone two seconds after the pointer came to rest. Motion brings the
/// pointer back, and motion near the lower edge a bar over the picture. Otherwise the stage's own
/// bar is there or not as a person wants it.
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
