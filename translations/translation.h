// The language in which a program or module speaks to the person at it.
#pragma once

#include <QtCore/QStringList>
#include <QtCore/QTranslator>

#include <memory>
#include <vector>

namespace halvenor {

/// The languages that the environment asks for, in the order of preference, as "de_AT" or "de", up
/// to the first English one: English is what everything is written in. `LANGUAGE`, `LC_ALL`,
/// `LC_MESSAGES` and `LANG` count as they do for gettext.
QStringList WantedLanguages();

/// Translates the texts of this program or module while it lives: those of `tr`, and those of
/// `Translated` (files/translated.h). One for a program or module, on the thread of the
/// application, which must be there. Other parts of the process are not told of a new language:
/// theirs stays as it is.
class Translation {
public:
  enum class Texts {
    Own,
    WithQt, ///< those of Qt's dialogs, too, for a program that speaks for the whole process
  };

  /// `folder` holds the texts of this program or module alone, as "halvenor_de.qm".
  Translation(const QString& folder, Texts texts);
  ~Translation();
  Translation(const Translation&) = delete;
  Translation& operator=(const Translation&) = delete;

private:
  void Install(std::unique_ptr<QTranslator> translator);

  std::vector<std::unique_ptr<QTranslator>> installed_;
};

} // namespace halvenor
