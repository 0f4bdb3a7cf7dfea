#include "desktop/media_names.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <filesystem>
#include <string_view>

namespace halvenor {
namespace {

constexpr std::string_view kAddressMark = "://";

} // namespace

bool IsAddress(const std::string& medium) {
  return medium.find(kAddressMark) != std::string::npos;
}

bool IsAddress(const QString& medium) {
  return IsAddress(medium.toStdString());
}

QString ToAddress(const std::string& medium) {
  if (IsAddress(medium)) return QString::fromStdString(medium);
  const std::string path = std::filesystem::absolute(medium).string();
  return QStringLiteral("file://") +
         QString::fromLatin1(QByteArray::fromStdString(path).toPercentEncoding("/"));
}

QString ToAbsolute(const QString& medium) {
  return IsAddress(medium) ? medium : QFileInfo(medium).absoluteFilePath();
}

QString ObviousFault(const QString& medium) {
  if (IsAddress(medium)) return {};
  const QFileInfo file(medium);
  if (!file.exists()) return QStringLiteral("%1: No such file or folder").arg(medium);
  if (!file.isReadable()) return QStringLiteral("%1: Permission denied").arg(medium);
  return {};
}

} // namespace halvenor
