// The ways to open media from the window: dialogs, the recent ones, and drag and drop.
#pragma once

#include "desktop/playback/player.h"

#include <QtCore/QSettings>
#include <QtCore/QStringList>
#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

namespace halvenor {

/// The dialogs do not block. Whatever the player opens is kept in the settings as recent.
class Opening final : public QObject {
  Q_OBJECT

public:
  Opening(QWidget& window, Player& player, QSettings& settings);

  void AskFiles();
  void AskFolder();
  void AskAddress();

  /// From now on fills `menu` with the recent media, each time before it opens.
  void ServeRecent(QMenu& menu);
  /// From now on plays what is dropped on `target`, a widget or a window.
  void TakeDrops(QObject& target);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void AskPaths(const QString& title, bool folder);
  void Remember(const QStringList& media);
  void FillRecent(QMenu& menu);

  QWidget& window_;
  Player& player_;
  QSettings& settings_;
};

} // namespace halvenor
