// What the other players of the session play, by D-Bus (MPRIS 2).
#pragma once

#include "desktop/playback/player.h"
#include "desktop/remote/session_bus.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>

#include <map>
#include <memory>

namespace halvenor {

/// Follows every player on the bus except this program, and finds the one that is heard: of those
/// that play, the one that started last; when none plays, the one that was heard last.
///
/// A signal of a player is only taken as a hint to ask it for its properties, five times a second
/// at most, so that no flood of signals keeps the program busy.
class MprisTitles final : public QObject {
  Q_OBJECT

public:
  /// `bus` must outlive this object.
  explicit MprisTitles(SessionBus& bus);

  /// Empty while nobody has played yet.
  [[nodiscard]] const OthersTrack& Track() const { return track_; }

signals:
  void Changed();

private slots:
  void OnPropertiesChanged(const QDBusMessage& message);

private:
  struct Other {
    QString service;
    QString identity;
    QString title;
    QString artist;
    QString status;
    quint64 begun = 0;   ///< grows with each start of a player; 0: it has not played
    bool isStale = true; ///< its properties have to be asked for
    int unanswered = 0;  ///< questions
  };

  void Begin();
  void Clear();
  void OwnerChanged(const QString& service, const QString& oldOwner, const QString& newOwner);
  void FindOwner(const QString& service);
  void Add(const QString& service, const QString& owner);
  void AskSoon();
  void AskStale();
  void Ask(const QString& owner, const QString& interface);
  void Take(const QString& owner, const QVariantMap& properties);
  void Choose();

  SessionBus& bus_;
  std::unique_ptr<QDBusServiceWatcher> watcher_;
  std::map<QString, Other> others_; ///< by the unique name of the connection
  QTimer pause_;                    ///< since players were asked
  quint64 begins_ = 0;
  OthersTrack track_;
};

} // namespace halvenor
