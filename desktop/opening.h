// The ways to say what shall be played: dialogs, what was played lately, and drops.
#pragma once

#include "desktop/player.h"

#include <QtCore/QSettings>
#include <QtCore/QStringList>
#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

namespace halvenor {

/// No dialog stops the picture. What was opened is remembered in the settings.
class Opening final : public QObject {
  Q_OBJECT

public:
  Opening(QWidget& window, Player& player, QSettings& settings);

  void AskFiles();
  void AskFolder();
  void AskAddress();

  /// Keeps `menu` filled with what was opened lately.
  void ServeRecent(QMenu& menu);
  /// From now on takes what is dropped on `target`, a widget or a window.
  void TakeDrops(QObject& target);

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void AskPaths(const QString& title, bool folder);
  void Open(const QStringList& media);
  void FillRecent(QMenu& menu);

  QWidget& window_;
  Player& player_;
  QSettings& settings_;
};

} // namespace halvenor
