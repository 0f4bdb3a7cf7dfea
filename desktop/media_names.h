// The names of media: paths and addresses (URIs).
#pragma once

#include <QtCore/QString>

#include <string>

namespace halvenor {

/// Whether `medium` is an address; else it is a path.
bool IsAddress(const QString& medium);
bool IsAddress(const std::string& medium);

/// `medium` as an address; the bytes of a path stay as they are.
QString ToAddress(const std::string& medium);

/// `medium` for a program that runs in another folder: a path becomes absolute.
QString ToAbsolute(const QString& medium);

/// What is wrong with `medium` as far as that can be seen without opening it, as one line; empty:
/// nothing.
QString ObviousFault(const QString& medium);

} // namespace halvenor
