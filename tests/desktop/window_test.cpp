// The desktop program as people use it: real displays, real keys, what is seen.
#include "tests/support/display_session.h"
#include "tests/support/sound_files.h"

#include <QtCore/QFile>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace halvenor::test {
namespace {

struct Desk {
  const char* name;
  std::unique_ptr<DisplaySession> (*start)(double scale);
  double scale;
};

void PrintTo(const Desk& desk, std::ostream* out) {
  *out << desk.name;
}

const Desk kDesks[] = {
    {"X11", DisplaySession::StartX11, 1},
    {"X11Scaled", DisplaySession::StartX11, 1.5},
    {"Wayland", DisplaySession::StartWayland, 1},
    {"WaylandScaled", DisplaySession::StartWayland, 2},
};

// How many pixels of two pictures of the same size differ clearly.
int DifferentPixels(const QImage& a, const QImage& b) {
  constexpr int kClearly = 12;
  int count = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y);
      const QRgb q = b.pixel(x, y);
      count += std::abs(qRed(p) - qRed(q)) > kClearly ||
               std::abs(qGreen(p) - qGreen(q)) > kClearly ||
               std::abs(qBlue(p) - qBlue(q)) > kClearly;
    }
  }
  return count;
}

int PixelsOf(QRgb color, const QImage& picture) {
  int count = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x)
      count += picture.pixel(x, y) == color;
  }
  return count;
}

// Pixels of the color that Qt's own style gives to menu bars.
int MenuBarPixels(const QImage& picture) {
  return PixelsOf(qRgb(239, 239, 239), picture);
}

int LitPixels(const QImage& picture) {
  QImage black(picture.size(), picture.format());
  black.fill(Qt::black);
  return DifferentPixels(picture, black);
}

class WindowTest : public testing::TestWithParam<Desk> {
protected:
  std::unique_ptr<DisplaySession> desk = GetParam().start(GetParam().scale);

  std::unique_ptr<Program> StartRecorded(const QStringList& arguments = {"--demo"}) {
    return std::make_unique<Program>(QStringList{"--plugin", FAKE_PLUGIN} + arguments,
                                     desk->Environment());
  }
  bool IsX11() const { return std::string(GetParam().name).starts_with("X11"); }
  std::string Area(const std::string& message, const std::string& rest) const {
    return "[" + message + "] " + (IsX11() ? "x11" : "wayland") + " whole native " + rest;
  }
};

TEST_P(WindowTest, TellsThePlugInWhatHappens) {
  std::unique_ptr<Program> program = StartRecorded();
  ASSERT_TRUE(Eventually([&] { return program->HasStart(Area("show", "")); }));
  EXPECT_TRUE(program->Last("[show]").ends_with(" options 0 timely"));
  EXPECT_TRUE(Eventually([&] { return program->Count("[vrnd]") > 10; }));
  EXPECT_EQ(program->Lines().front(), "[init] stored: ");
  EXPECT_EQ(program->Last("[vply]"), "[vply] Lanterns on Still Water - the Halvenor authors");

  // Keys: characters in Mac OS Roman, capitals and keys that print nothing too.
  const struct {
    const char* key;
    const char* told;
  } keys[] = {{"h", "104"}, {"Left", "28"}, {"Return", "13"}, {"Tab", "9"}, {"s", "115"}};
  for (const auto& [key, told] : keys) {
    EXPECT_TRUE(desk->PressUntil(key, [&, told = told] {
      return program->Has(std::string("[vevt] ") + told);
    })) << key;
  }

  // By way of the menu, which gives the keyboard back afterwards.
  EXPECT_TRUE(desk->PressUntil("alt+v c", [&] { return program->HasStart("[cnfg]"); }));
  EXPECT_TRUE(desk->PressUntil("alt+v Escape x", [&] { return program->Has("[vevt] 120"); }));

  // Full screen by the window's keys, which the plug-in had before and did not use, and out of it
  // by the window's and by the plug-in's. It does not hear of sizes on the way.
  const std::string full = Area("swin", "1280x800 options 1");
  const auto isFull = [&] { return program->Last("[swin]") == full; };
  const auto isWindow = [&] {
    const std::string last = program->Last("[swin]");
    return last.ends_with(" options 0") && last.find(" 1280x800 ") == std::string::npos;
  };
  const struct {
    const char* enter;
    const char* leave;
  } ways[] = {{"f", "Escape"}, {"F11", "c"}, {"f", "F11"}};
  for (const auto& [enter, leave] : ways) {
    EXPECT_TRUE(desk->PressUntil(enter, isFull)) << enter;
    EXPECT_TRUE(desk->PressUntil(leave, isWindow)) << leave;
  }
  for (const char* told : {"[vevt] 102", "[vevt] 27", "[vevt] 16"})
    EXPECT_TRUE(program->Has(told)) << told;

  const std::string before = program->Last("[swin]");
  desk->ResizeWindow({500, 333});
  EXPECT_TRUE(Eventually([&] { return isWindow() && program->Last("[swin]") != before; }));

  desk->CloseWindow();
  EXPECT_EQ(program->ExitStatus(), EXIT_SUCCESS);
  EXPECT_TRUE(program->Has("[vstp]"));
  EXPECT_EQ(program->Last("[hide]"), IsX11() ? "[hide] window is there" : "[hide]");
  EXPECT_EQ(program->Lines().back(), "[clr ]");

  program = StartRecorded();
  EXPECT_TRUE(Eventually([&] { return program->Has("[init] stored: kept"); }));
}

TEST_P(WindowTest, ShowsAMovingPictureToThoseWhoSeeIt) {
  Program program({"--demo"}, desk->Environment());
  const auto picture = [&] { return desk->Picture().copy(400, 200, 480, 360); };
  const auto moves = [&] { return DifferentPixels(picture(), picture()) > 3000; };
  EXPECT_TRUE(Eventually([&] { return LitPixels(picture()) > 3000; }));
  for (int move = 0; move < 3; ++move)
    EXPECT_TRUE(Eventually(moves));
  // In full screen nothing is left of the menu bar, and the picture reaches the edges.
  EXPECT_GT(MenuBarPixels(desk->Picture()), 5000);
  EXPECT_TRUE(desk->PressUntil("f", [&] { return MenuBarPixels(desk->Picture()) < 100; }));
  EXPECT_TRUE(Eventually([&] { return LitPixels(desk->Picture().copy(0, 300, 10, 200)) > 1000; }));
  for (const std::string& line : program.Lines()) {
    EXPECT_EQ(line.find("rror"), std::string::npos) << line;
  }
  // Put away, it draws nothing while its sound goes on; and it comes back.
  EXPECT_TRUE(desk->PressUntil("Escape", [&] { return MenuBarPixels(desk->Picture()) > 5000; }));
  desk->PutWindowAway();
  EXPECT_TRUE(Eventually([&] { return program.Load(1000) < 0.15; }));
  EXPECT_FALSE(moves());
  desk->BringWindowBack();
  EXPECT_TRUE(Eventually(moves));
  program.Signal(SIGTERM);
  EXPECT_EQ(program.ExitStatus(), EXIT_SUCCESS);
}

class ExerciseTest : public WindowTest {};

// What is done over and over leaves nothing behind. A picture's memory lost each time would be
// forty times as much or more.
TEST_P(ExerciseTest, KeepsNothingOfWhatIsPast) {
  const struct {
    const char* exercise;
    int turns;
  } cases[] = {{"show", 40}, {"full", 20}, {"resize", 100}};
  for (const auto& [exercise, turns] : cases) {
    QProcess process;
    process.setProcessEnvironment(desk->Environment());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(WINDOW_EXERCISER, {exercise, QString::number(turns), HALVENOR_PLUGIN});
    ASSERT_TRUE(process.waitForFinished(120'000)) << exercise;
    const QByteArray last = process.readAll().trimmed().split('\n').last();
    int done = 0;
    int files = 0;
    int kilobytes = 0;
    ASSERT_EQ(
        std::sscanf(last.constData(), "turns %d files %d memory %d kB", &done, &files, &kilobytes),
        3)
        << exercise << ": " << last.constData();
    EXPECT_EQ(done, turns) << exercise;
    EXPECT_LE(files, 0) << exercise;
    EXPECT_LT(kilobytes, 24'000) << exercise;
  }
}

// --- On one display, for what does not depend on it ---------------------------------------------

class OneDeskTest : public testing::Test {
protected:
  std::unique_ptr<DisplaySession> desk = DisplaySession::StartX11(1);
  SoundFolder files;

  QString Silence(const char* name, double seconds) const {
    return QString::fromStdString(files.Write(
        name, "wavenc",
        {.rate = 8000, .channels = 1, .seconds = seconds, .wave = [](double, int) { return 0; }}));
  }
  QString Text() const {
    return QString::fromStdString(files.WriteBytes("notes.txt", "no sound in here\n"));
  }
};

TEST_F(OneDeskTest, EndsInOrder) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, 0}) {
    Program program({"--demo", "--plugin", FAKE_PLUGIN}, desk->Environment());
    ASSERT_TRUE(Eventually([&] { return program.HasStart("[vrnd]"); }));
    if (signal) {
      program.Signal(signal);
    } else {
      desk->Press("ctrl+q");
    }
    EXPECT_EQ(program.ExitStatus(), EXIT_SUCCESS) << signal;
    EXPECT_EQ(program.Last("[hide]"), "[hide] window is there") << signal;
    EXPECT_EQ(program.Lines().back(), "[clr ]") << signal;
  }
}

// A compositor's scale changes while the program runs, and another screen has another: the
// picture's pixels are the screen's again.
TEST(ScaledDeskTest, FollowsTheScaleOfItsScreen) {
  const std::unique_ptr<DisplaySession> desk = DisplaySession::StartWayland(1);
  const auto output = [&](const QString& number, const QString& rest) {
    desk->Run("swaymsg", QStringList{"output", "HEADLESS-" + number} + rest.split(' '));
  };
  QFile settings(desk->Environment().value("XDG_CONFIG_HOME") + "/halvenor/halvenor.conf");
  ASSERT_TRUE(settings.open(QFile::Append));
  settings.write("[fullScreen]\nscreen=HEADLESS-2\n");
  settings.close();
  Program program({"--demo", "--plugin", FAKE_PLUGIN}, desk->Environment());
  const std::string area = "[show] wayland whole native ";
  ASSERT_TRUE(Eventually([&] { return program.HasStart(area); }));
  int width = 0;
  int height = 0;
  std::sscanf(program.Last(area).c_str() + area.size(), "%dx%d", &width, &height);
  const auto isWindow = [&](int scale) {
    return program.Last("[swin]").ends_with(" " + std::to_string(width * scale) + "x" +
                                            std::to_string(height * scale) + " options 0");
  };
  for (const int scale : {2, 3, 1}) {
    output("1", "scale " + QString::number(scale));
    EXPECT_TRUE(Eventually([&] { return isWindow(scale); })) << scale << program.Last("[swin]");
  }
  // In full screen on the other one it comes to stay there.
  desk->Run("swaymsg", {"create_output"});
  output("2", "resolution 1600x1200 scale 2");
  EXPECT_TRUE(desk->PressUntil(
      "f", [&] { return program.Last("[swin]").ends_with(" 1600x1200 options 1"); }));
  EXPECT_TRUE(desk->PressUntil("Escape", [&] { return isWindow(2); })) << program.Last("[swin]");
}

// Seen before the program comes to draw what the window system has made larger.
TEST_F(OneDeskTest, IsNotWhiteWhereItGrows) {
  Program program({"--demo", "--plugin", FAKE_PLUGIN}, desk->Environment());
  ASSERT_TRUE(Eventually([&] { return program.HasStart("[vrnd]"); }));
  program.Signal(SIGSTOP);
  desk->Run("xdotool", {"getactivewindow", "windowsize", "--sync", "1100", "700"});
  EXPECT_LT(PixelsOf(qRgb(255, 255, 255), desk->Picture()), 10'000);
  program.Signal(SIGCONT);
}

// Settings that cannot be kept are no reason to end.
TEST_F(OneDeskTest, GoesOnWithoutSettings) {
  QProcessEnvironment readOnly = desk->Environment();
  readOnly.insert("XDG_CONFIG_HOME", "/proc/self");
  Program program({"--demo", "--plugin", FAKE_PLUGIN}, readOnly);
  ASSERT_TRUE(Eventually([&] { return program.HasStart("[vrnd]"); }));
  EXPECT_TRUE(desk->PressUntil("ctrl+t", [&] { return program.HasStart("[swin]"); }));
  EXPECT_TRUE(desk->PressUntil(
      "s", [&] { return program.HasStart("halvenor: The visualizer's settings cannot be"); }));
  EXPECT_TRUE(
      Eventually([&] { return program.HasStart("halvenor: The settings cannot be saved"); }));
  EXPECT_TRUE(desk->PressUntil("alt+F4", [&] { return program.Has("[clr ]"); }));
  EXPECT_EQ(program.ExitStatus(), EXIT_SUCCESS);
}

TEST_F(OneDeskTest, IdlesAfterTheEndOfTheFile) {
  const QString tone = Silence("One second.wav", 1);
  Program program({"--plugin", FAKE_PLUGIN, tone}, desk->Environment());
  ASSERT_TRUE(Eventually([&] { return program.HasStart("[vstp]"); }));
  EXPECT_EQ(program.Last("[vply]"), "[vply] | One second");
  const int records = program.Count("[vrnd]");
  EXPECT_GE(records, 5);
  EXPECT_LE(records, 20);
  const int idle = program.Count("[null]");
  EXPECT_TRUE(Eventually([&] { return program.Count("[null]") > idle + 5; }));
  EXPECT_EQ(program.Count("[vrnd]"), records);
}

// The window and the settings window of the plug-in do; whoever asks by a terminal is answered in
// English.
TEST_F(OneDeskTest, SpeaksTheLanguageOfTheEnvironment) {
  const QString text = Text();
  const struct {
    const char* language;
    const char* fault;
    const char* title;
  } cases[] = {{"de_DE.UTF-8", "ist keine unterst\u00fctzte Audiodatei", "Einstellungen "},
               {"fr:de", "n\u2019est pas un fichier audio pris en charge", "Configuration "},
               {"en_GB:de", "isn't a supported audio file", "Settings "}};
  for (const auto& [language, fault, title] : cases) {
    QProcessEnvironment environment = desk->Environment();
    const bool isList = QString(language).contains(':');
    environment.insert("LC_ALL", isList ? "nl_NL.UTF-8" : language);
    environment.insert("LANGUAGE", isList ? language : "");
    Program program({text}, environment);
    const std::string line = "halvenor: " + text.toStdString() + ": " + fault;
    EXPECT_TRUE(Eventually([&] { return program.Has(line); })) << line;
    EXPECT_TRUE(desk->PressUntil("c", [&, title = title] {
      // Between two windows none is active.
      return desk->Run("sh", {"-c", "xdotool getactivewindow getwindowname || true"})
          .startsWith(title);
    })) << title;

    QProcess control;
    control.setProcessEnvironment(environment);
    control.start(HALVENOR_PROGRAM, {"--control", "pause"});
    ASSERT_TRUE(control.waitForFinished());
    EXPECT_EQ(control.readAllStandardError(), "halvenor: Nothing is playing\n");
    control.start(HALVENOR_PROGRAM, {"--help"});
    ASSERT_TRUE(control.waitForFinished());
    EXPECT_TRUE(control.readAllStandardOutput().contains("\n  Ctrl+O          Open Files\n"));
    program.Signal(SIGTERM);
    EXPECT_EQ(program.ExitStatus(), EXIT_SUCCESS);
  }
}

TEST_F(OneDeskTest, RefusesWhatItCannotStartWith) {
  const QString text = Text();
  QProcessEnvironment nowhere = desk->Environment();
  nowhere.insert("DISPLAY", ":4711");
  const struct {
    QStringList arguments;
    QProcessEnvironment environment;
    std::string line;
  } cases[] = {
      {{"/nowhere/song.ogg"},
       desk->Environment(),
       "halvenor: /nowhere/song.ogg: No such file or folder"},
      {{"--source", "x", text},
       desk->Environment(),
       "halvenor: Give either --source or something to play"},
      {{"--plugin", text},
       desk->Environment(),
       "halvenor: cannot load the plug-in " + text.toStdString()},
      {{"--plugin", "/nowhere"}, desk->Environment(), "halvenor: cannot load the plug-in /nowhere"},
      {{}, nowhere, "halvenor: Cannot open a display"},
  };
  for (const auto& [arguments, environment, line] : cases) {
    Program program(arguments, environment);
    EXPECT_EQ(program.ExitStatus(), EXIT_FAILURE) << line;
    ASSERT_EQ(program.Lines().size(), 1u) << line;
    EXPECT_TRUE(program.HasStart(line)) << program.Lines().front();
  }
}

// What goes wrong while there is a window is said in the window, too.
TEST_F(OneDeskTest, TellsOfFailuresInTheWindow) {
  const QString text = Text();
  QProcessEnvironment noPicture = desk->Environment();
  noPicture.insert("HALVENOR_TEST_SHOW_STATUS", "1001");
  const struct {
    QString medium;
    QProcessEnvironment environment;
    std::string line;
    int status; // a file more or less is no failure, but there is nothing without a picture
  } cases[] = {
      {text, desk->Environment(), "halvenor: " + text.toStdString(), EXIT_SUCCESS},
      {Silence("silence.wav", 1), noPicture, "halvenor: The picture cannot be shown", EXIT_FAILURE},
  };
  for (const auto& [medium, environment, line, status] : cases) {
    Program program({"--plugin", FAKE_PLUGIN, medium}, environment);
    ASSERT_TRUE(Eventually([&, line = line] { return program.HasStart(line); })) << line;
    EXPECT_TRUE(Eventually([&] {
      return LitPixels(desk->Picture().copy(300, 150, 700, 555)) > 200;
    })) << line;
    EXPECT_EQ(LitPixels(desk->Picture().copy(300, 150, 700, 300)), 0) << line; // the picture
    desk->CloseWindow();
    EXPECT_EQ(program.ExitStatus(), status) << line;
    EXPECT_EQ(program.Count("halvenor: "), 1) << line;
  }
}

// The plug-in's own text says that the preset was saved.
TEST_F(OneDeskTest, TellsOfPresetsThatCannotBeSaved) {
  QProcessEnvironment readOnly = desk->Environment();
  readOnly.insert("XDG_DATA_HOME", "/proc/self");
  Program program({Silence("silence.wav", 60)}, readOnly);
  const auto bottom = [&] {
    return PixelsOf(qRgb(239, 239, 239), desk->Picture().copy(160, 560, 960, 150));
  };
  ASSERT_TRUE(Eventually([&] { return LitPixels(desk->Picture()) > 1000; }));
  const int before = bottom();
  EXPECT_TRUE(desk->PressUntil(
      "s", [&] { return program.HasStart("halvenor: The look was not saved: "); }));
  EXPECT_TRUE(Eventually([&] { return bottom() > before + 5000; })) << "no notice";
}

const auto kNameOf = [](const auto& tested) { return tested.param.name; };
INSTANTIATE_TEST_SUITE_P(Desks, WindowTest, testing::ValuesIn(kDesks), kNameOf);
INSTANTIATE_TEST_SUITE_P(Desks, ExerciseTest, testing::Values(kDesks[1], kDesks[2]), kNameOf);

} // namespace
} // namespace halvenor::test
