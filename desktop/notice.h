// One line of bad news over the picture.
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

namespace halvenor {

/// It goes away when it is clicked, or by itself unless it is told to stay.
class Notice final : public QLabel {
  Q_OBJECT

public:
  Notice();

  void Tell(const QString& line, bool stays);

signals:
  void Wanted(bool wanted);

protected:
  void mousePressEvent(QMouseEvent*) override { emit Wanted(false); }

private:
  QTimer timer_;
};

} // namespace halvenor
