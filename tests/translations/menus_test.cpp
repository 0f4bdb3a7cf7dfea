// What the player's window says in every language, without a display.
#include "desktop/playback/failure_tally.h"
#include "desktop/program_settings.h"
#include "desktop/window/keys_card.h"
#include "desktop/window/main_window.h"
#include "files/file_bytes.h"
#include "host/preference_store.h"
#include "translations/translation.h"

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <map>
#include <utility>

namespace halvenor::test {
namespace {

using Environment = std::map<std::string, const char*>;

void Live(const Environment& environment) {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
    qunsetenv(name);
  for (const auto& [name, value] : environment)
    qputenv(name.c_str(), value);
}

Translation Speaking(const char* language) {
  Live({{"LANG", language}});
  return {QStringLiteral(HALVENOR_CARRIED_TEXTS), Translation::Texts::WithQt};
}

// The texts of a menu and of those in it.
QStringList TextsOf(const QList<QAction*>& actions) {
  QStringList texts;
  QStringList letters;
  for (const QAction* action : actions) {
    if (action->isSeparator()) continue;
    texts.append(action->text());
    const QString letter = QKeySequence::mnemonic(action->text()).toString();
    EXPECT_FALSE(letter.isEmpty() && action->text().contains('&')) << qPrintable(action->text());
    EXPECT_FALSE(letters.contains(letter))
        << qPrintable(action->text() + " in: " + texts.join(';'));
    if (!letter.isEmpty()) letters.append(letter);
    if (action->menu()) texts += TextsOf(action->menu()->actions());
  }
  return texts;
}

class LanguageTest : public testing::Test {
protected:
  QTemporaryDir folder;
  std::unique_ptr<QApplication> application = [this] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
    static int count = 1;
    static char name[] = "menus_test";
    static char* words[] = {name, nullptr};
    return std::make_unique<QApplication>(count, words);
  }();
};

TEST_F(LanguageTest, IsThatOfTheEnvironment) {
  const struct {
    Environment environment;
    QStringList wanted;
  } cases[] = {
      {{}, {}},
      {{{"LANG", "de_AT.UTF-8"}}, {"de_AT.UTF-8", "de_AT", "de.UTF-8", "de"}},
      {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}}, {"fr"}},
      {{{"LANG", "de"}, {"LC_MESSAGES", "fr"}, {"LC_ALL", "it"}}, {"it"}},
      {{{"LANG", "de"}, {"LANGUAGE", "nl:fr"}}, {"nl", "fr"}},
      {{{"LANG", "de"}, {"LANGUAGE", "fr:en_GB:de"}}, {"fr"}},
      {{{"LANG", "C"}, {"LANGUAGE", "de"}}, {}},
      {{{"LANG", "de"}, {"LC_ALL", "C.UTF-8"}, {"LANGUAGE", "fr"}}, {}},
      {{{"LANG", "en_US.UTF-8"}}, {}},
  };
  for (const auto& [environment, wanted] : cases) {
    Live(environment);
    EXPECT_EQ(WantedLanguages(), wanted) << qPrintable(WantedLanguages().join(' '));
  }
}

TEST_F(LanguageTest, SpeaksInEveryMenuAndMessage) {
  const struct {
    const char* language;
    QStringList menus;   ///< some of them
    const char* folder;  ///< how a room without a window calls one
    const char* failure; ///< with a plural
  } cases[] = {
      {"de_CH.UTF-8",
       {"&Datei", "Ü&ber Halvenor", "Halvenor &einrichten...", "&Zuletzt geöffnet"},
       "ist ein Ordner",
       "2 weitere Titel konnten nicht abgespielt werden"},
      {"fr_FR.UTF-8",
       {"&Fichier", "À &propos de Halvenor", "Con&figurer Halvenor...", "Éléments &récents"},
       "est un dossier",
       "2 autres éléments n’ont pas pu être lus"},
      {"ja_JP.UTF-8",
       {"&File", "&About Halvenor", "&Configure Halvenor...", "Open &Recent"},
       "is a folder",
       "2 more could not be played"},
  };
  for (const auto& [language, menus, folderText, failure] : cases) {
    const Translation translation = Speaking(language);
    std::string error;
    std::unique_ptr<Visualizer> visualizer = Visualizer::Create(
        HALVENOR_PLUGIN, std::make_unique<FilePreferenceStore>(folder.path().toStdString()), error);
    ASSERT_TRUE(visualizer) << error;
    ProgramSettings settings;
    Player player(visualizer->Plugin(), settings);
    MainWindow window(std::move(visualizer), player, settings, [] { return std::string(); });
    const QStringList texts = TextsOf(window.menuBar()->actions());
    EXPECT_GT(texts.size(), 30) << language;
    for (const QString& menu : menus)
      EXPECT_TRUE(texts.contains(menu)) << qPrintable(menu + " in: " + texts.join(';'));
    EXPECT_LE(KeysCard().sizeHint().width(), 640) << language;

    EXPECT_EQ(OpenRegularFile(AT_FDCWD, "/", Links::Follow, 1).Reason(), folderText);
    FailureTally tally;
    for (int i = 0; i < 5; ++i)
      tally.Failed("x");
    EXPECT_EQ(tally.Played().value_or("none"), failure);
  }
  EXPECT_EQ(OpenRegularFile(AT_FDCWD, "/", Links::Follow, 1).Reason(), "is a folder");
}

} // namespace
} // namespace halvenor::test
