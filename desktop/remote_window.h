// What other programs may do with the window.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

namespace halvenor {

class MainWindow;

/// The window, for D-Bus and for the control socket.
class RemoteWindow final : public QObject {
  Q_OBJECT

public:
  /// `window` must outlive this object.
  explicit RemoteWindow(MainWindow& window);

  [[nodiscard]] bool IsFullScreen() const;
  void SetFullScreen(bool fullScreen);
  void Raise();
  /// As a person presses and lets go a key; what is no name of a key, or a character, is refused
  /// with false.
  bool PressKey(const QString& key);
  /// Closes the window and ends the program, once this call is over.
  void Quit();

signals:
  void FullScreenChanged();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  MainWindow& window_;
};

} // namespace halvenor
