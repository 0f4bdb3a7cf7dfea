// One message about a failure, over the picture.
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

namespace halvenor {

/// Shows the latest message until it is clicked, its time is over or its cause is gone.
class Notice final : public QLabel {
  Q_OBJECT

public:
  enum class Kind {
    Playback, ///< about what plays: for a while, or until `EndPlayback`
    Program,  ///< for a while
    Lasting   ///< until it is clicked
  };

  Notice();

  void Tell(const QString& message, Kind kind);
  /// What was told about what plays no longer matters.
  void EndPlayback();

signals:
  void Wanted(bool wanted);

protected:
  void mousePressEvent(QMouseEvent*) override { emit Wanted(false); }

private:
  Kind kind_ = Kind::Program;
  QTimer timer_;
};

} // namespace halvenor
