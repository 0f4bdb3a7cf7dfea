#include "desktop/media_arguments.h"

#include <QtCore/QFileInfo>

namespace halvenor {
namespace {

bool IsAddress(const QString& medium) {
  return medium.contains(QLatin1String("://"));
}

} // namespace

QString ObviousFault(const QString& medium) {
  if (IsAddress(medium)) return {};
  const QFileInfo file(medium);
  if (!file.exists()) return QStringLiteral("%1: there is no such file").arg(medium);
  if (!file.isReadable()) return QStringLiteral("%1: the file cannot be read").arg(medium);
  return {};
}

QString AbsoluteMedium(const QString& medium) {
  return IsAddress(medium) ? medium : QFileInfo(medium).absoluteFilePath();
}

} // namespace halvenor
