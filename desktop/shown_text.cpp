#include "desktop/shown_text.h"

#include "files/printable.h"

namespace halvenor {

QString ShownLine(const QString& text, qsizetype limit) {
  constexpr qsizetype kLooksAt = 4; // short of converting a hostile megabyte
  return QString::fromStdString(
      Printable(text.left(limit * kLooksAt).toStdString(), static_cast<std::size_t>(limit)));
}

QString ShownLine(const std::string& text) {
  return QString::fromStdString(Printable(text));
}

} // namespace halvenor
