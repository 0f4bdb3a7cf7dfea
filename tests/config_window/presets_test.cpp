// The presets side of the configuration window.
#include "presets/look.h"
#include "presets/preset_file.h"
#include "tests/config_window/window_fixture.h"
#include "tests/support/small_disk.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QRadioButton>

#include <ctime>
#include <unistd.h>

namespace halvenor::test {
namespace {

class PresetsTest : public WindowFixture {
protected:
  QListView* List() const { return Find<QListView>("presets"); }
  QModelIndex Row(const QString& name) const {
    const QModelIndexList found = List()->model()->match(
        List()->model()->index(0, 0), Qt::DisplayRole, name, 1, Qt::MatchFixedString);
    return found.isEmpty() ? QModelIndex() : found.front();
  }
  bool Has(const QString& name) const {
    return QTest::qWaitFor([&] { return Row(name).isValid(); }, 2000);
  }
  bool HasNo(const QString& name) const {
    return QTest::qWaitFor([&] { return !Row(name).isValid(); }, 2000);
  }
  void Select(const QString& name) const {
    ASSERT_TRUE(Has(name)) << qPrintable(name);
    List()->setCurrentIndex(Row(name));
    List()->setFocus();
  }
  void ClickOn(const QString& name, bool star = false) const {
    ASSERT_TRUE(Has(name)) << qPrintable(name);
    List()->scrollTo(Row(name));
    const QRect cell = List()->visualRect(Row(name));
    QTest::mouseClick(List()->viewport(), Qt::LeftButton, {},
                      star ? cell.topRight() + QPoint(-16, 16) : cell.center());
  }
  QStringList Files() const { return QDir(PresetsFolder()).entryList({"*.preset"}); }
  bool Shows(const Settings& look) const {
    return QTest::qWaitFor([&] { return SameLook(Host::Present(), look); }, 5000);
  }
  void Write(const QString& file, const NamedLook& preset) const {
    QDir().mkpath(QFileInfo(file).path());
    std::string problem;
    ASSERT_TRUE(WritePresetFile(file.toStdString(), std::span(&preset, 1), problem)) << problem;
  }
  NamedLook WriteOwn(const char* name, float intensity) const {
    NamedLook preset{name, DefaultSettings()};
    preset.look.intensity = intensity;
    Write(PresetsFolder() + '/' + name + ".preset", preset);
    return preset;
  }
};

TEST_F(PresetsTest, AreKeptRenamedRemovedAndBroughtBack) {
  Host::Change([](Settings& s) { s.intensity = 0.125F; });
  EXPECT_EQ(Host::CallLocked(LoadedModule().addPreset), status::kOk); // the window is closed
  Open();
  Host::Change([](Settings& s) { s.intensity = 0.5F; });
  EXPECT_EQ(Host::CallLocked(LoadedModule().addPreset), status::kOk);
  Click("add.button");
  EXPECT_TRUE(Has("My Look") && Has("My Look 2") && Has("My Look 3"));
  EXPECT_EQ(Files().size(), 3);

  Select("My Look");
  QTest::keyClick(List(), Qt::Key_F2);
  auto* name = Find<QLineEdit>("presetName");
  ASSERT_TRUE(name);
  QTest::keyClicks(name, "Quiet Sea");
  QTest::keyClick(name, Qt::Key_Return);
  EXPECT_TRUE(Has("Quiet Sea") && HasNo("My Look"));
  EXPECT_EQ(List()->currentIndex().data().toString(), "Quiet Sea");

  {
    const SmallDisk full(0);
    Click("duplicate.button");
    EXPECT_TRUE(Message().contains("File too large")) << qPrintable(Message());
    EXPECT_NE(Host::CallLocked(LoadedModule().addPreset), status::kOk);
    EXPECT_EQ(Files().size(), 3);
  }
  Click("duplicate.button");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Files().size() == 4; }));
  Select("Quiet Sea");
  QTest::keyClick(List(), Qt::Key_Delete);
  EXPECT_TRUE(HasNo("Quiet Sea"));
  EXPECT_TRUE(Message().contains("Quiet Sea"));
  QTest::keyClick(List(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(Has("Quiet Sea"));

  Find<QDoubleSpinBox>("smooth")->setValue(0);
  ClickOn("Quiet Sea");
  Settings look = DefaultSettings();
  look.intensity = 0.125F;
  EXPECT_TRUE(Shows(look));

  ClickOn("My Look 2", true);
  EXPECT_TRUE(Shows(look)) << "a click on the star has chosen the preset";
  Click("favoritesShown");
  EXPECT_TRUE(QTest::qWaitFor([&] { return List()->model()->rowCount() == 1; }));
  Click("favoritesShown");
  QTest::keyClick(Window(), Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "quiet SEA");
  EXPECT_TRUE(Has("Quiet Sea") && HasNo("My Look 2"));
}

TEST_F(PresetsTest, ComeAndGoAsOneFile) {
  NamedLook brought{"Brought Along", DefaultSettings()};
  brought.look.numLines = 12;
  Write(Folder("one.preset"), brought);
  Open();
  const auto answer = [this](const char* dialogName, const QString& file) {
    auto* dialog = Find<QFileDialog>(dialogName);
    ASSERT_TRUE(dialog);
    auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
    name->setText(file);
    QTest::keyClick(name, Qt::Key_Return);
  };
  QTest::keyClick(Window(), Qt::Key_O, Qt::ControlModifier);
  answer("importDialog", Folder("one.preset"));
  EXPECT_TRUE(Has("Brought Along"));
  Window()->activateWindow(); // there is no window manager to do it
  ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
  QTest::keyClick(Window(), Qt::Key_E, Qt::ControlModifier);
  answer("exportDialog", Folder("all"));
  std::string problem;
  const auto all = ReadPresetFile(Folder("all.preset").toStdString(), problem);
  ASSERT_TRUE(all) << problem;
  EXPECT_EQ(static_cast<int>(all->size()), List()->model()->rowCount());
}

TEST_F(PresetsTest, SwitchByThemselvesUntilSomebodyActs) {
  const NamedLook one = WriteOwn("aaa", 0.25F);
  const NamedLook two = WriteOwn("aab", 0.75F);
  Open();
  auto* byItself = Find<QRadioButton>("byItself");
  auto* manual = Find<QRadioButton>("manual");
  Find<QDoubleSpinBox>("interval")->setValue(2);
  Find<QDoubleSpinBox>("smooth")->setValue(0);
  Find<QDoubleSpinBox>("smooth")->setValue(0.5);
  ClickOn("aaa", true);
  Find<QCheckBox>("favoritesOnly")->setChecked(true);
  ClickOn("aab", true);

  // Switching ends the autopilot, the autopilot ends switching; each with a word.
  Host::Change([](Settings& s) { s.autopilot = 1; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return Find<QCheckBox>("autopilot")->isChecked(); }));
  byItself->click();
  EXPECT_EQ(Host::Present().autopilot, 0);
  EXPECT_TRUE(Message().contains("autopilot is off")) << qPrintable(Message());
  Host::Change([](Settings& s) { s.autopilot = 1; });
  EXPECT_TRUE(QTest::qWaitFor([&] { return manual->isChecked(); }));
  EXPECT_TRUE(Message().contains("no longer change automatically")) << qPrintable(Message());
  Host::Change([](Settings& s) { s.autopilot = 0; });

  // It goes on while the window is closed, until "Manual".
  byItself->click();
  Window()->close();
  EXPECT_TRUE(Shows(one.look));
  EXPECT_TRUE(Shows(two.look));
  EXPECT_EQ(Host::CallLocked(LoadedModule().switchToManual), status::kOk);
  const int looks = Host::guards; // ten a second while presets change
  QTest::qWait(250);
  EXPECT_EQ(Host::guards, looks);
  EXPECT_TRUE(SameLook(Host::Present(), two.look));
  Open();
  EXPECT_TRUE(manual->isChecked());

  // The look that is kept stays, and so does the one that a hand is laid on.
  Find<QDoubleSpinBox>("smooth")->setValue(60);
  ClickOn("aaa");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Host::Present().intensity < 0.75F; }));
  EXPECT_EQ(Host::CallLocked(LoadedModule().addPreset), status::kOk);
  const float kept = Host::Present().intensity;
  AwaitLooks();
  EXPECT_EQ(Host::Present().intensity, kept);
  ClickOn("aaa");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Host::Present().intensity < kept; }));
  Find<QCheckBox>("glow")->click();
  EXPECT_TRUE(QTest::qWaitFor([&] { return Message().contains("smooth change has ended"); }));
  const Settings stands = Host::Present();
  AwaitLooks();
  EXPECT_TRUE(SameLook(Host::Present(), stands));
  EXPECT_EQ(stands.glow, 0);
}

TEST_F(PresetsTest, OpenFastHoweverMany) {
  constexpr int kMany = 1000;
  ASSERT_TRUE(QDir().mkpath(PresetsFolder()));
  const auto write = [this](const QString& name, const QString& text) {
    QFile file(PresetsFolder() + '/' + name + ".preset");
    EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(text.toUtf8()) == text.size());
  };
  for (int i = 0; i < kMany; ++i)
    write(QString("many-%1").arg(i),
          QString("[Halvenor Presets]\nformat=1\n[Preset 1]\nname=Many %1\nfade=%2\n")
              .arg(i)
              .arg(static_cast<double>(i) / kMany));
  for (const char* broken : {"broken", "foreign"})
    write(broken, "no preset at all\n");
  QElapsedTimer clock;
  clock.start();
  const std::clock_t before = std::clock();
  Open();
  List()->grab();
  // Of its own time: other programs may have the processor.
  constexpr int kSlowerWhenChecked = HALVENOR_CHECKED ? 10 : 1;
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC * kSlowerWhenChecked);
  EXPECT_LT(clock.elapsed(), 20'000 * kSlowerWhenChecked);
  EXPECT_GE(List()->model()->rowCount(), kMany);
  Window()->close();
  Open();
  const QString told = Find<QPlainTextEdit>("messages")->toPlainText();
  EXPECT_EQ(told.count("broken.preset"), 1) << qPrintable(told);
  EXPECT_EQ(told.count("foreign.preset"), 1) << qPrintable(told);
}

TEST_F(PresetsTest, GetTheirPicturesWhenTheyAreSeen) {
  QImage picture(240, 135, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(Folder("picture.png")));
  for (int i = 0; i < 60; ++i)
    WriteOwn(qPrintable(QString("aaa-%1").arg(i)), static_cast<float>(i) / 60);
  const auto renders = [this] {
    QFile file(Folder("renders"));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
  };
  const auto isRed = [this](const QString& name) {
    const QImage seen = List()->viewport()->grab().toImage();
    return seen.pixelColor(List()->visualRect(Row(name)).center()) == QColor(Qt::red);
  };
  Open();
  EXPECT_TRUE(QTest::qWaitFor([&] { return renders().contains('\n'); }));
  List()->scrollTo(Row("aaa-59"), QListView::PositionAtTop); // before the first rows had theirs
  EXPECT_TRUE(QTest::qWaitFor([&] { return isRed("aaa-59"); })) << "no picture";
  const auto isRendering = [] {
    QFile children(QString("/proc/self/task/%1/children").arg(getpid()));
    return children.open(QFile::ReadOnly) && !children.readAll().isEmpty();
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return !isRendering(); }, 30'000));
  EXPECT_LT(renders().count(QByteArray("\n")), 8) << "rows that nobody sees are rendered";
  EXPECT_TRUE(renders().contains("--set intensity=0.983")) << renders().constData();

  // What no preset looks like any more goes when the window does, unless it is new.
  const QDir cache(Folder("cache/halvenor/presets"));
  const QStringList used = cache.entryList({"*.png"});
  EXPECT_FALSE(used.isEmpty());
  const QStringList unused{"unused.png", ".unused.png.Abc123"};
  for (const QString& name : used + unused + QStringList("new.png")) {
    QFile file(cache.filePath(name));
    ASSERT_TRUE(file.open(QFile::Append));
    const qint64 age = name == "new.png" ? 0 : 86400;
    file.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFile::FileModificationTime);
  }
  Window()->close();
  for (const QString& name : used + unused + QStringList("new.png"))
    EXPECT_EQ(cache.exists(name), !unused.contains(name)) << qPrintable(name);
}

} // namespace
} // namespace halvenor::test
