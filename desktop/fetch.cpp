#include "desktop/fetch.h"

#include <QtCore/QEventLoop>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <memory>

namespace halvenor {
namespace {

constexpr int kMilliseconds = 10000;
constexpr qint64 kLargest = 1 << 20; // bytes

// A list is text, or sound by the old names that lists have.
bool IsSound(const QNetworkReply& reply) {
  const QString type = reply.header(QNetworkRequest::ContentTypeHeader).toString();
  return type.startsWith(QLatin1String("audio/")) && !type.contains(QLatin1String("url")) &&
         !type.contains(QLatin1String("scpls"));
}

} // namespace

std::optional<QByteArray> FetchList(const QString& address, QString& problem) {
  QNetworkAccessManager network;
  QNetworkRequest request{QUrl(address)};
  request.setTransferTimeout(kMilliseconds);
  const std::unique_ptr<QNetworkReply> reply(network.get(request));
  QByteArray bytes;
  bool enough = false;
  QEventLoop loop;
  const auto take = [&] {
    enough = IsSound(*reply);
    if (!enough) bytes += reply->readAll();
    if (enough || bytes.size() > kLargest) reply->abort();
  };
  QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
  QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
  loop.exec();
  if (enough) return QByteArray();
  if (bytes.size() > kLargest) {
    problem = QStringLiteral("%1: is too large for a playlist").arg(address);
  } else if (reply->error() != QNetworkReply::NoError) {
    problem = QStringLiteral("%1: %2").arg(address, reply->errorString());
  } else {
    return bytes + reply->readAll();
  }
  return std::nullopt;
}

} // namespace halvenor
