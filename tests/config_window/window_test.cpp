// The configuration window as people use it, through the module's entries.
#include "tests/config_window/window_fixture.h"
#include "tests/support/log_lines.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtGui/QAccessible>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QSlider>

#include <cstring>
#include <limits>
#include <set>
#include <thread>

namespace halvenor::test {
namespace {

// What a person reads in the control.
QString Shown(const QWidget* widget) {
  if (const auto* spin = qobject_cast<const QDoubleSpinBox*>(widget)) return spin->text();
  if (const auto* box = qobject_cast<const QComboBox*>(widget)) return box->currentText();
  const auto* button = qobject_cast<const QAbstractButton*>(widget);
  if (!button) return "no control";
  if (button->isCheckable()) return button->isChecked() ? "on" : "off";
  return button->text();
}

TEST_F(WindowFixture, ShowsWhatOthersChangeAndWritesNothing) {
  Open();
  const struct {
    const char* control;
    std::function<void(Settings&)> change;
    const char* shown;
  } cases[] = {
      {"intensity", [](Settings& s) { s.intensity = 0.25F; }, "0.250"},
      {"zoom", [](Settings& s) { s.zoom = 1.75F; }, "1.000"},
      {"fade", [](Settings& s) { s.fade = std::numeric_limits<float>::quiet_NaN(); }, "0.000"},
      {"zoomRotation", [](Settings& s) { s.zoomRotation = 359.94F; }, "359.9\u00B0"},
      {"outerColor",
       [](Settings& s) {
         s.outerColor = {1, -3, 0.5F};
       },
       "#FF0080"},
      {"smoothing", [](Settings& s) { s.smoothing = 0; }, "off"},
      {"sharpOverlay", [](Settings& s) { s.sharpOverlay = 7; }, "on"},
      {"frequencyScale", [](Settings& s) { s.frequencyScale = 3; }, "Blended"},
      {"frequencyScale", [](Settings& s) { s.frequencyScale = 9; }, ""},
      {"trackTextDuration", [](Settings& s) { s.trackTextDuration = 4500; }, "4.5 s"},
      {"trackTextDuration.endless", [](Settings& s) { s.trackTextDuration = 999999; }, "on"},
      {"frameDelay", [](Settings& s) { s.frameDelay = 16667; }, "60 fps"},
      {"frameDelay.endless", [](Settings& s) { s.frameDelay = 0; }, "on"},
      {"fontSize", [](Settings& s) { s.fontSize = 4000; }, "128 pixels"},
      {"fullScreenWidth", [](Settings& s) { s.fullScreenWidth = 1920; }, "1920 pixels"},
  };
  for (const auto& [control, change, shown] : cases) {
    Host::Change(change);
    const Settings changed = Host::Present();
    QWidget* widget = Find<QWidget>(control);
    EXPECT_TRUE(QTest::qWaitFor([&, shown = shown] { return Shown(widget) == shown; }, 2000))
        << control << ": " << qPrintable(Shown(widget)) << " instead of " << shown;
    QTest::qWait(0);
    const Settings now = Host::Present();
    EXPECT_EQ(std::memcmp(&now, &changed, sizeof now), 0) << control;
  }

  // Not while a hand is on it.
  auto* slider = Find<QSlider>("numLines.slider");
  auto* lines = Find<QWidget>("numLines");
  slider->setSliderDown(true);
  Host::Change([](Settings& s) { s.numLines = 90; });
  AwaitLooks();
  EXPECT_EQ(Shown(lines), "34.0");
  slider->setSliderDown(false);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Shown(lines) == "90.0"; }));
}

TEST_F(WindowFixture, SavesAndPutsBack) {
  const struct {
    const char* way;
    bool resize;
    Status refusal;
    std::vector<int> codes;
    bool kept, closed;
  } cases[] = {
      {"save", true, 0, {0, 1}, true, false}, {"save", false, 0, {0}, true, false},
      {"close", true, 0, {0, 1}, true, true}, {"window", false, 0, {0}, true, true},
      {"escape", false, 0, {0}, true, true},  {"cancel", true, 0, {}, false, true},
      {"close", true, -34, {0}, true, false},
  };
  for (const auto& [way, resize, refusal, codes, kept, closed] : cases) {
    Host::Change([](Settings& s) { s = DefaultSettings(); });
    Open();
    Host::codes.clear();
    Host::refusal = refusal;
    Find<QDoubleSpinBox>("zoom")->setValue(0.1);
    Find<QCheckBox>("autopilot")->click();
    Move(*FindSetting("innerColor")); // its dialog closes, and stores nothing
    QTest::qWait(0);
    const Color moved = Host::Present().innerColor;
    Click("outerColor"); // this one stays, for as long as the window
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    if (resize) Find<QDoubleSpinBox>("fullScreenHeight")->setValue(1080);
    const std::string how(way);
    if (how == "window") {
      Window()->close();
    } else if (how == "escape") {
      QTest::keyClick(Window(), Qt::Key_Escape);
    } else {
      Click(way);
    }
    EXPECT_EQ(Host::codes, codes) << way;
    EXPECT_EQ(Window()->isVisible(), !closed) << way;
    Settings expected = DefaultSettings();
    if (kept) {
      Set(expected, "zoom", "0.1");
      expected.autopilot = 1;
      expected.innerColor = moved;
      if (resize) expected.fullScreenHeight = 1080;
    }
    const Settings now = Host::Present();
    EXPECT_EQ(std::memcmp(&now, &expected, sizeof now), 0) << way;
    if (refusal != status::kOk) {
      EXPECT_TRUE(Message().contains("could not be saved")) << qPrintable(Message());
      Click(way); // a second time: as it is
    }
    Window()->close();
    for (const QWidget* widget : QApplication::topLevelWidgets())
      EXPECT_FALSE(widget->isVisible()) << way << ": " << widget->metaObject()->className();
  }
}

TEST_F(WindowFixture, OpensOnceAndInFront) {
  Open();
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  Open(); // fails when there are two
  EXPECT_TRUE(Window()->isActiveWindow());
  Window()->showMinimized();
  Open();
  EXPECT_FALSE(Window()->isMinimized());
}

// The host's window decides: with it the program ends, and what was moved is stored before.
TEST_F(WindowFixture, EndsWithTheHost) {
  QWidget main;
  main.show();
  Open();
  Find<QDoubleSpinBox>("zoom")->setValue(0.1);
  QTimer::singleShot(0, &main, [&] {
    main.close();
    EXPECT_EQ(Host::codes, std::vector{0});
    Host::hasRecord = false;
  });
  QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(1); });
  EXPECT_EQ(QApplication::exec(), 0) << "the open window keeps the program alive";
  EXPECT_EQ(Host::record.settings.zoom, 0.1F);
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(WindowFixture, RefusesWhereNoWindowCanBe) {
  const auto initialize = [] { return Host::CallLocked([] { return status::kOk; }); };
  Status elsewhere = status::kOk;
  std::thread([&] { elsewhere = initialize(); }).join();
  EXPECT_NE(elsewhere, status::kOk);
  EXPECT_EQ(initialize(), status::kOk);
  EndApplication();
  EXPECT_NE(initialize(), status::kOk);
  for (const auto entry : {LoadedModule().orderWindowFront, LoadedModule().addPreset,
                           LoadedModule().switchToManual, LoadedModule().logSettings})
    EXPECT_NE(entry(), status::kOk);
  int count = 0;
  const QCoreApplication bare(count, nullptr);
  EXPECT_NE(initialize(), status::kOk);
}

TEST_F(WindowFixture, RestsWhileThereIsNoRecord) {
  Open();
  auto* zoom = Find<QDoubleSpinBox>("zoom");
  Host::hasRecord = false;
  EXPECT_TRUE(QTest::qWaitFor([&] { return !zoom->isEnabled(); }));
  zoom->setValue(0.1);
  Click("add.button");
  QTest::qWait(50);
  Window()->close();
  EXPECT_EQ(Host::record.settings.zoom, DefaultSettings().zoom);
  EXPECT_TRUE(Host::codes.empty());
  EXPECT_EQ(QDir(PresetsFolder()).count(), 0u);
  Host::hasRecord = true;
  Open();
  EXPECT_TRUE(zoom->isEnabled());
  EXPECT_EQ(Shown(zoom), "0.700");
}

TEST_F(WindowFixture, LogsEverySettingByName) {
  LogLines log;
  EXPECT_EQ(Host::CallLocked(LoadedModule().logSettings), status::kOk);
  const std::vector<std::string> lines = log.Take();
  ASSERT_EQ(lines.size(), SettingFields().size());
  EXPECT_EQ(lines.front(), "intensity = 0.337209");
  EXPECT_EQ(lines.back(), "frameDelay = 10000");
}

TEST_F(WindowFixture, WorksByKeyboardAndSpeaksToScreenReaders) {
  Open();
  std::set<QWidget*> reached;
  for (QWidget* at = QApplication::focusWidget(); reached.insert(at).second;
       at = QApplication::focusWidget())
    QTest::keyClick(at, Qt::Key_Tab);
  for (auto* widget : Window()->findChildren<QWidget*>()) {
    if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible() || !widget->isEnabled() ||
        widget->focusProxy() || widget->objectName().startsWith("qt_"))
      continue;
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(widget);
    // What a combo box says first is its value.
    EXPECT_TRUE(spoken &&
                (qobject_cast<QComboBox*>(widget) ? !spoken->relations(QAccessible::Label).isEmpty()
                                                  : !spoken->text(QAccessible::Name).isEmpty()))
        << qPrintable(widget->objectName());
    const auto* radio = qobject_cast<QRadioButton*>(widget); // a group is one stop
    EXPECT_TRUE(reached.contains(widget) || (radio && !radio->isChecked()))
        << qPrintable(widget->objectName());
  }
  EXPECT_GT(reached.size(), SettingFields().size());
  EXPECT_EQ(QAccessible::queryAccessibleInterface(Window())->role(), QAccessible::Window);
  for (const auto* label : Window()->findChildren<QLabel*>()) {
    const QKeySequence letter = QKeySequence::mnemonic(label->text());
    if (letter.isEmpty()) continue;
    QTest::keySequence(Window(), letter);
    EXPECT_TRUE(label->buddy()->hasFocus()) << qPrintable(label->text());
  }
  EXPECT_LE(Window()->minimumSizeHint().width(), 1024);
  EXPECT_LE(Window()->minimumSizeHint().height(), 560);
}

// A widget of the host's, which has its own way with languages.
class HostWidget : public QWidget {
public:
  int changes = 0;

protected:
  void changeEvent(QEvent* event) override { changes += event->type() == QEvent::LanguageChange; }
};

TEST_F(WindowFixture, SpeaksTheLanguageOfThePersonAndOfNobodyElse) {
  const struct {
    const char* language;
    const char* title;
    const char* save;
    const char* choice;
    const char* saved;
  } cases[] = {
      {"de_DE.UTF-8", "Einstellungen \u2014 Halvenor", "&Speichern", "Quadratwurzel",
       "Dieser Look ist als \u201eMein Look\u201c gespeichert."},
      {"fr_CA.UTF-8", "Configuration \u2014 Halvenor", "&Enregistrer", "Racine carr\u00e9e",
       "Cette apparence est enregistr\u00e9e sous \u00ab\u00a0Mon apparence\u00a0\u00bb."},
      {"C.UTF-8", "Settings \u2014 Halvenor", "&Save", "Square root",
       "Saved this look as \"My Look\"."},
  };
  for (const auto& [language, title, save, choice, saved] : cases) {
    qputenv("LC_ALL", language);
    const HostWidget host;
    Open();
    EXPECT_EQ(Window()->windowTitle(), title);
    EXPECT_EQ(Find<QAbstractButton>("save")->text(), save);
    EXPECT_EQ(Find<QComboBox>("frequencyScale")->currentText(), choice);
    EXPECT_EQ(Host::CallLocked(LoadedModule().addPreset), status::kOk);
    EXPECT_EQ(Message(), saved);

    QStringList letters;
    for (const auto* widget : Window()->findChildren<QWidget*>()) {
      const QKeySequence letter =
          QKeySequence::mnemonic(widget->property("text").toString()); // of labels and buttons
      EXPECT_FALSE(letters.contains(letter.toString())) << qPrintable(letter.toString());
      if (!letter.isEmpty()) letters.append(letter.toString());
    }
    EXPECT_GT(letters.size(), 20) << language;
    // On the left and right half of small screens nothing is cut.
    EXPECT_LE(Window()->minimumSizeHint().width(), 640) << language;
    Window()->resize(640, 700);
    QTest::qWait(0);
    for (const auto* button : Window()->findChildren<QPushButton*>())
      EXPECT_GE(button->width(), button->minimumSizeHint().width()) << qPrintable(button->text());

    Window()->close();
    emit QCoreApplication::instance()->aboutToQuit({});
    EXPECT_EQ(QCoreApplication::translate("halvenor::PresetList", "Presets"), "Presets");
    EXPECT_EQ(host.changes, 0);
    QDir(PresetsFolder()).removeRecursively();
  }
  qputenv("LC_ALL", "C.UTF-8");
}

} // namespace
} // namespace halvenor::test
