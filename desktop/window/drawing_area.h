// The window that a plug-in draws into.
#pragma once

#include "platform/ports.h"

#include <QtGui/QWindow>

namespace halvenor {

/// A native window that Qt creates, places and destroys but never paints: only the plug-in draws in
/// it, so nothing flickers, and on Wayland nobody else attaches buffers.
class DrawingArea final : public QWindow {
  Q_OBJECT

public:
  DrawingArea();
  ~DrawingArea() override;

  /// Whether the window system that the program runs on can provide a port.
  static bool IsPossible();

  /// The area as a port, or null while there is no native window to draw into. Always the same
  /// record; its bounds are the area in device pixels, or the size set below.
  GrafPtr Port();

  /// Draws pictures of `size` pixels and scales them up where the area is larger; an empty size:
  /// pictures have the area's own size.
  void SetPictureSize(QSize size);

signals:
  /// The port exists: the native window was created and shown.
  void Appeared();
  /// The port's sizes have changed.
  void Resized();
  /// The native window is destroyed when this returns, and the port with it.
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
