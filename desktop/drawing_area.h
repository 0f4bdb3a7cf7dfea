// The window that a plug-in draws into.
#pragma once

#include "platform/ports.h"

#include <QtGui/QWindow>

namespace halvenor {

/// A native window that Qt makes, places and destroys but never paints: what stands in it is the
/// plug-in's alone, so nothing flickers, and on Wayland nobody else attaches buffers.
class DrawingArea final : public QWindow {
  Q_OBJECT

public:
  DrawingArea();
  ~DrawingArea() override;

  /// True where a port can be made of the window system that the program runs on.
  static bool IsPossible();

  /// The area as a port, or null while there is no native window that can be drawn into. The same
  /// record all the time; its bounds are the area in device pixels, or the size asked for below.
  GrafPtr Port();

  /// Pictures of `size` pixels are scaled up to the area where it is larger; an empty size:
  /// pictures have the area's own.
  void SetPictureSize(QSize size);

signals:
  /// The port has come into being: the native window is there and has been shown.
  void Appeared();
  /// The port's sizes have changed.
  void Resized();
  /// The native window goes away when this returns, and the port with it.
  void AboutToVanish();
  void PointerMoved(QPoint globalPosition);
  void DoubleClicked();
  void MenuWanted(QPoint globalPosition);

protected:
  bool event(QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

private slots:
  void Vanish();

private:
  void Appear();
  void FollowScreen(QScreen* screen);
  void UpdateBounds();

  HalvenorPort port_{};
  QSize pictureSize_;
  bool present_ = false;
};

} // namespace halvenor
