// Places the picture and what stands beside and over it.
#pragma once

#include <QtWidgets/QWidget>

#include <vector>

namespace halvenor {

/// The middle of the window. What stands over the picture is a window of its own within the
/// program's, like the one that the plug-in draws into and above that: neither paints over the
/// other. It never has the keyboard.
class Stage final : public QWidget {
  Q_OBJECT

public:
  enum class Place {
    Bottom, ///< the lower edge, above those that were added before
    Middle, ///< between the upper edge and those that were added before
  };

  /// Takes both; the bar stands beneath the picture.
  Stage(QWidget& picture, QWidget& bar);

  void ShowBar(bool shown);
  /// Places `overlay`, a widget without parent that must end before the program's window does.
  void AddOverlay(QWidget& overlay, Place place);
  void ShowOverlay(QWidget& overlay, bool shown);

  /// To be called before the program's window is hidden and before it is shown: what was painted
  /// has reached the compositor and come back when this returns.
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
