#include "desktop/playback/playlist_fetch.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <memory>

namespace halvenor {
namespace {

constexpr int kMilliseconds = 10'000;
constexpr qint64 kLargest = 1 << 20; // bytes

// Lists are text, or have old media types that begin with "audio/".
bool IsSound(const QNetworkReply& reply) {
  const QString type = reply.header(QNetworkRequest::ContentTypeHeader).toString();
  return type.startsWith(QLatin1String("audio/")) && !type.contains(QLatin1String("url")) &&
         !type.contains(QLatin1String("scpls"));
}

} // namespace

std::optional<QByteArray> FetchPlaylist(const QString& address, const std::stop_token& stop,
                                        QString& problem) {
  QNetworkAccessManager network;
  QNetworkRequest request{QUrl(address)};
  const std::unique_ptr<QNetworkReply> reply(network.get(request));
  QByteArray bytes;
  bool enough = false;
  QEventLoop loop;
  const auto take = [&] {
    bytes += reply->readAll();
    enough = IsSound(*reply) || bytes.contains('\0');
    if (enough || bytes.size() > kLargest) reply->abort();
  };
  QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
  QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
  QTimer::singleShot(kMilliseconds, &loop, &QEventLoop::quit);
  const std::stop_callback stopped(
      stop, [&loop] { QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection); });
  if (!stop.stop_requested()) loop.exec();
  if (enough) return QByteArray();
  if (!reply->isFinished()) {
    problem =
        QCoreApplication::translate("halvenor::PlaylistFetch", "%1 does not answer").arg(address);
  } else if (bytes.size() > kLargest) {
    problem =
        QCoreApplication::translate("halvenor::PlaylistFetch", "%1 is too large for a playlist")
            .arg(address);
  } else if (reply->error() != QNetworkReply::NoError) {
    problem = QStringLiteral("%1: %2").arg(address, reply->errorString());
  } else {
    return bytes + reply->readAll();
  }
  return std::nullopt;
}

} // namespace halvenor
