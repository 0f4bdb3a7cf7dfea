// Media as they are given on a command line.
#pragma once

#include <QtCore/QString>

namespace halvenor {

/// What is wrong with `medium` that can be seen without opening it; empty: nothing.
QString ObviousFault(const QString& medium);

/// `medium` for a program that runs in another folder: paths become absolute, addresses stay.
QString AbsoluteMedium(const QString& medium);

} // namespace halvenor
