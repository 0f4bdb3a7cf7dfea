#include "translations/translation.h"

#include "files/translated.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QLibraryInfo>
#include <glib.h>

#include <utility>

namespace halvenor {
namespace {

std::string FromQt(const char* context, const char* text) {
  return QCoreApplication::translate(context, text).toStdString();
}

QString LocaleOfMessages() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (QString locale = qEnvironmentVariable(name); !locale.isEmpty()) return locale;
  }
  return QStringLiteral("C");
}

bool IsPlain(const QString& locale) {
  return locale == QLatin1String("C") || locale == QLatin1String("POSIX") ||
         locale.startsWith(QLatin1String("C."));
}

// While it lives, the application tells its widgets of no new language.
class Unannounced final : public QObject {
public:
  Unannounced() { QCoreApplication::instance()->installEventFilter(this); }

protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    return event->type() == QEvent::LanguageChange && watched == QCoreApplication::instance();
  }
};

} // namespace

QStringList WantedLanguages() {
  // GLib alone lets `LANGUAGE` change the locale "C", too, which scripts choose for its English.
  if (IsPlain(LocaleOfMessages())) return {};
  QStringList wanted;
  for (const char* const* name = g_get_language_names(); *name; ++name) {
    const QString language = QString::fromUtf8(*name);
    if (language.startsWith(QLatin1String("en")) || IsPlain(language)) break;
    wanted.append(language);
  }
  return wanted;
}

Translation::Translation(const QString& folder, Texts texts) {
  for (const QString& language : WantedLanguages()) {
    auto own = std::make_unique<QTranslator>();
    if (!own->load(folder + QStringLiteral("/halvenor_%1.qm").arg(language))) continue;
    if (texts == Texts::WithQt) {
      auto qt = std::make_unique<QTranslator>();
      if (qt->load(QStringLiteral("qtbase_") + language,
                   QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        Install(std::move(qt));
    }
    Install(std::move(own));
    SetTextTranslator(FromQt);
    return;
  }
}

Translation::~Translation() {
  SetTextTranslator(nullptr);
  if (!QCoreApplication::instance()) return;
  const Unannounced quiet;
  installed_.clear();
}

void Translation::Install(std::unique_ptr<QTranslator> translator) {
  const Unannounced quiet;
  QCoreApplication::installTranslator(translator.get());
  installed_.push_back(std::move(translator));
}

} // namespace halvenor
