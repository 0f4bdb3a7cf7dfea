// Text from anywhere, made fit to be shown.
#pragma once

#include <QtCore/QString>

#include <string>

namespace halvenor {

/// `text` made fit to be shown by `Printable`, at most `limit` characters long.
QString ShownLine(const QString& text, qsizetype limit = 300);
/// The same of text in UTF-8.
QString ShownLine(const std::string& text);

} // namespace halvenor
