// Places the picture, the bar below it and the overlays on top of it.
#pragma once

#include <QtWidgets/QWidget>

#include <vector>

namespace halvenor {

/// The central widget. An overlay is a native window within the program's, like the one that the
/// plug-in draws into and above it, so that neither paints over the other. It never takes the
/// keyboard focus.
class Stage final : public QWidget {
  Q_OBJECT

public:
  enum class Place {
    Bottom, ///< at the lower edge, above those that were added before
    Middle, ///< centered above those that were added before
  };

  /// Owns both; the bar is below the picture.
  Stage(QWidget& picture, QWidget& bar);

  void ShowBar(bool shown);
  /// Places `overlay`, a widget without parent that must end before the program's window does.
  void AddOverlay(QWidget& overlay, Place place);
  void ShowOverlay(QWidget& overlay, bool shown);

  /// Call these before the program's window is hidden, and before it is shown. When the first
  /// returns, the compositor has finished what was painted.
  void LetPaintingEnd();
  void LetPaintingBegin();

signals:
  void PointerOverOverlay(QPoint globalPosition);

protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  struct Overlay {
    QWidget* widget;
    Place place;
    bool isWanted;
  };

  void ShowAll();
  void ShowNow(const Overlay& overlay);
  void HideSoon(const Overlay& overlay);
  void Arrange();

  QWidget& picture_;
  QWidget& bar_;
  std::vector<Overlay> overlays_;
  bool isExposed_ = false; ///< the program's window is on the screen
};

} // namespace halvenor
