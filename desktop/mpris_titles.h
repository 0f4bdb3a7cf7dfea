// What the other players of the session play, as they tell it on D-Bus (MPRIS 2).
#pragma once

#include "desktop/player.h"
#include "desktop/session_bus.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>

#include <map>
#include <memory>

namespace halvenor {

/// Follows every player on the bus but this program and finds the one that is heard: of those that
/// play the one that began last; when none plays, the one that was heard last.
class MprisTitles final : public QObject {
  Q_OBJECT

public:
  /// `bus` must outlive this object.
  explicit MprisTitles(SessionBus& bus);

  /// All empty while nobody has played yet.
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
    quint64 begun = 0; ///< the later it began to play, the higher; 0: it never did
  };

  void Begin();
  void Clear();
  void OwnerChanged(const QString& service, const QString& oldOwner, const QString& newOwner);
  void Add(const QString& service, const QString& owner);
  void Ask(const QString& owner, const QString& interface);
  void Take(const QString& owner, const QVariantMap& properties);
  void Choose();

  SessionBus& bus_;
  std::unique_ptr<QDBusServiceWatcher> watcher_;
  std::map<QString, Other> others_; ///< by the unique name of the connection
  quint64 begins_ = 0;
  OthersTrack track_;
};

} // namespace halvenor
