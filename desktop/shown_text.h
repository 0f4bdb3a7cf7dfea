// Text from anywhere, made fit to be shown.
#pragma once

#include <QtCore/QString>

#include <string>

namespace halvenor {

/// `text` as one line of at most `limit` characters: control characters and marks that turn the
/// direction of writing are blanks, and blanks in a row are one.
QString ShownLine(const QString& text, qsizetype limit = 300);
/// The same of text in UTF-8.
QString ShownLine(const std::string& text);

} // namespace halvenor
