// The desktop program among others: D-Bus, the control socket, the sound server, the network.
#include "tests/desktop/other_player.h"
#include "tests/support/display_session.h"
#include "tests/support/radio_server.h"
#include "tests/support/sound_servers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtNetwork/QLocalSocket>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace halvenor::test {
namespace {

struct Outcome {
  int status;
  std::string said; ///< both outputs, without the last line's end
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << outcome.status << " \"" << outcome.said << '"';
}

// What is left of a socket whose program was killed.
void LeaveSocket(const QString& path) {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  close(socket);
}

class ProgramsTest : public testing::Test {
protected:
  TestSoundServer sound{TestSoundServer::Kind::PulseAudio}; // first: it sets the environment
  std::unique_ptr<DisplaySession> desk = DisplaySession::StartX11(1);
  QProcessEnvironment environment = desk->Environment();
  QProcess bus;
  QString busAddress;
  SoundFolder files;

  ProgramsTest() {
    environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(sound.Folder()));
    bus.setStandardErrorFile(QProcess::nullDevice());
    bus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
    EXPECT_TRUE(bus.waitForReadyRead()) << "dbus-daemon";
    busAddress = QString::fromUtf8(bus.readLine()).trimmed();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", busAddress);
  }
  ~ProgramsTest() override {
    bus.kill();
    bus.waitForFinished();
  }

  std::unique_ptr<Program> Start(const QStringList& arguments) {
    return std::make_unique<Program>(QStringList{"--plugin", FAKE_PLUGIN} + arguments, environment);
  }
  Outcome Run(const QString& program, const QStringList& arguments, const QString& folder = {}) {
    QProcess tool;
    tool.setProcessEnvironment(environment);
    tool.setProcessChannelMode(QProcess::MergedChannels);
    tool.setWorkingDirectory(folder);
    tool.start(program, arguments);
    EXPECT_TRUE(tool.waitForFinished()) << program.toStdString();
    return {tool.exitCode(), tool.readAll().trimmed().toStdString()};
  }
  Outcome Control(const QStringList& command, const QString& folder = {}) {
    return Run(HALVENOR_PROGRAM, QStringList{"--control"} + command, folder);
  }
  std::string Ask(const QString& question) {
    return Run("playerctl", QStringList{"-p", "halvenor"} + question.split(' ')).said;
  }
  bool Becomes(const QString& question, const std::string& answer) {
    return Eventually([&] { return Ask(question) == answer; }, 10);
  }

  /// A tone with a title; the file's name has something before it.
  std::string Tone(const std::string& title, double seconds, const std::string& before = {}) {
    return files.Write(before + title + ".flac",
                       "taginject tags=\"title=" + title + ",artist=Tester\" ! flacenc",
                       {.seconds = seconds, .wave = Sine(1000, 0.5)});
  }
  QString Folder() const { return QString::fromStdString(files.Path("")); }
};

// What plays goes to the plug-in in order, and other programs can follow and steer it.
TEST_F(ProgramsTest, PlaysAnAlbumAsAPlayerOfTheSession) {
  Tone("One", 4, "1 ");
  files.WriteBytes("2 Broken.flac", "no sound in here");
  Tone("Three", 4, "3 ");
  Tone("Four", 60, "4 ");
  const std::unique_ptr<Program> program = Start({Folder()});
  ASSERT_TRUE(Eventually([&] { return program->Has("[vply] One - Tester"); }));
  EXPECT_TRUE(Becomes("status", "Playing"));
  EXPECT_EQ(Ask("metadata xesam:title"), "One");
  EXPECT_EQ(Ask("metadata mpris:length"), "4000000");
  EXPECT_EQ(Ask("metadata xesam:url"), "file://" + files.Path("1%20One.flac"));
  ASSERT_TRUE(Eventually([&] { return program->HasStart("[vrnd] sound"); }));

  QProcess follower; // hears of changes only by what the program tells of itself
  follower.setProcessEnvironment(environment);
  follower.start("playerctl", {"-p", "halvenor", "--follow", "metadata", "--format",
                               "{{status}} {{title}} {{volume}}"});
  ASSERT_TRUE(follower.waitForReadyRead());

  // Over the broken one, with a word, to the end of the next and without a gap to the last.
  ASSERT_TRUE(Eventually([&] { return program->Has("[vply] Three - Tester"); }));
  EXPECT_EQ(program->Count("halvenor: " + files.Path("2 Broken.flac")), 1);
  ASSERT_TRUE(Eventually([&] { return program->Has("[ctrk] Four - Tester"); }));
  EXPECT_EQ(program->Count("[vstp]"), 1);

  const struct {
    QString command;
    QString question;
    std::string answer;
    std::string told; ///< the last line, but for records and idle messages, starts so
  } steps[] = {
      {"pause", "status", "Paused", "[vpau]"},
      {"play", "status", "Playing", "[vunp]"},
      {"play-pause", "status", "Paused", "[vpau]"},
      {"play-pause", "status", "Playing", "[vunp]"},
      {"previous", "metadata xesam:title", "Three", "[vply] Three"},
      {"next", "metadata xesam:title", "Four", "[vply] Four"},
      {"volume 0.5", "volume", "0.500000", "[vply]"},
      {"stop", "status", "Stopped", "[vstp]"},
      {"play", "status", "Playing", "[vply] Four"},
  };
  for (const auto& [command, question, answer, told] : steps) {
    EXPECT_EQ(Ask(command), "") << command.toStdString();
    EXPECT_TRUE(Becomes(question, answer)) << command.toStdString() << Ask(question);
    EXPECT_TRUE(Eventually([&, told = told] {
      std::vector<std::string> lines = program->Lines();
      std::erase_if(lines, [](const std::string& line) {
        return line.starts_with("[vrnd]") || line.starts_with("[null]");
      });
      return lines.back().starts_with(told);
    })) << command.toStdString();
  }
  QByteArray followed;
  for (const char* line :
       {"Playing One 1", "Playing Three 1", "Paused Four 1", "Playing Four 0.5"}) {
    EXPECT_TRUE(Eventually([&] {
      follower.waitForReadyRead(10);
      return (followed += follower.readAll()).contains(line);
    })) << line
        << " in\n"
        << followed.constData();
  }
  follower.kill();
  follower.waitForFinished();
  EXPECT_TRUE(Eventually([&] { return Ask("position 30").empty() && Ask("position") > "30"; }));
  EXPECT_EQ(Run("playerctl", {"-p", "halvenor", "open", QString::fromStdString(Tone("Five", 2))}),
            (Outcome{0, ""}));
  EXPECT_TRUE(Eventually([&] { return program->Has("[vply] Five - Tester"); }));
  EXPECT_TRUE(Becomes("status", "Stopped"));
  EXPECT_NE(Run("playerctl", {"-p", "halvenor", "metadata"}).status, 0); // nothing is played
}

TEST_F(ProgramsTest, PlaysRadioAndSaysWhatCannotBePlayed) {
  const RadioServer radio;
  const std::unique_ptr<Program> program = Start({"--demo"});
  ASSERT_TRUE(Eventually([&] { return program->HasStart("[vrnd]"); }));
  EXPECT_EQ(Control({"open", QString::fromStdString(radio.Address("stall,good.pls"))}).status,
            0); // a list, to be fetched
  EXPECT_TRUE(Eventually([&] { return program->HasStart("[vply] Loopback FM -  | "); }));
  EXPECT_TRUE(Eventually([&] { // with the first sound or right after it
    return program->Has("[ctrk] Loopback FM -  | Someone - Song 0") ||
           program->Has("[vply] Loopback FM -  | Someone - Song 0");
  }));
  EXPECT_TRUE(Becomes("metadata xesam:title", "Someone - Song 0"));
  EXPECT_EQ(Ask("metadata xesam:album"), "Loopback FM");
  // It stalls: the picture rests until it is back.
  EXPECT_TRUE(Eventually([&] { return program->Has("[vpau]") && program->Has("[vunp]"); }, 60));
  EXPECT_TRUE(Eventually([&] { return program->Has("[ctrk] Loopback FM -  | Someone - Song 1"); }));
  EXPECT_EQ(program->Count("halvenor: "), 1) << program->Last("halvenor: ");

  QDir(Folder()).mkdir("broken");
  for (const char* name :
       {"broken/1.flac", "broken/2.flac", "broken/\x1b[2J\xff.flac", "broken/4.flac"})
    files.WriteBytes(name, "no sound in here");
  EXPECT_EQ(Control({"open", "broken"}, Folder()).status, 0);
  EXPECT_TRUE(
      Eventually([&] { return program->Has("halvenor: None of the 4 entries could be played"); }));
  EXPECT_EQ(program->Count("halvenor: " + files.Path("broken")), 3);
  EXPECT_TRUE(Becomes("status", "Stopped"));
  for (const std::string& line : program->Lines())
    EXPECT_EQ(line.find('\x1b'), std::string::npos) << line;
}

TEST_F(ProgramsTest, IsControlledFromOutside) {
  EXPECT_EQ(Control({"play"}), (Outcome{1, "halvenor: Halvenor is not running"}));
  EXPECT_EQ(Control({"dance"}).status, 2);

  // A socket that somebody left behind is no obstacle.
  const QString path = QString::fromStdString(sound.Folder()) + "/halvenor.sock";
  LeaveSocket(path);
  Tone("One", 60);
  std::unique_ptr<Program> first = Start({QString::fromStdString(files.Path("One.flac"))});
  ASSERT_TRUE(Eventually([&] { return first->HasStart("[vrnd]"); }));
  EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), 0);
  const std::unique_ptr<Program> second = Start({"--demo"});
  ASSERT_TRUE(Eventually([&] { return second->HasStart("[vrnd]"); }));
  EXPECT_NE(Run("playerctl", {"-l"}).said.find("halvenor.instance"), std::string::npos);

  Tone("Two", 2);
  const struct {
    QStringList command;
    Outcome outcome;
    std::string told;
  } steps[] = {
      {{"pause"}, {0, ""}, "[vpau]"},
      {{"play"}, {0, ""}, "[vunp]"},
      {{"key", "h", "Left", "A"}, {0, ""}, "[vevt] 65"},
      {{"key", "nonsense"}, {1, "halvenor: Unknown key \"nonsense\""}, ""},
      {{"fullscreen"}, {0, ""}, "[swin] x11 whole native 1280x800 options 1"},
      {{"seek", "30"}, {0, ""}, ""},
      {{"volume", "-20"}, {0, ""}, ""},
      {{"volume", "300"}, {2, "halvenor: The volume must be from 0 to 100 (see --help)"}, ""},
      {{"listen", "nonesuch"},
       {1, "halvenor: Unknown source \"nonesuch\" (see --list-sources)"},
       ""},
      {{"next"}, {1, "halvenor: There is no next entry"}, ""},
      {{"open", "nowhere.flac"}, {1, "halvenor: nowhere.flac: No such file or folder"}, ""},
      {{"open", "Two.flac"}, {0, ""}, "[vply] Two - Tester"}, // relative to where that was said
      {{"stop"}, {0, ""}, "[vstp]"},
  };
  for (const auto& [command, outcome, told] : steps) {
    EXPECT_EQ(Control(command, Folder()), outcome) << command.join(' ').toStdString();
    EXPECT_TRUE(Eventually([&, told = told] { return told.empty() || first->HasStart(told); }))
        << told;
  }
  EXPECT_FALSE(second->HasStart("[vpau]"));
  EXPECT_EQ(Ask("volume"), "0.800000");
  // What is no number is refused, and what was opened by a command is among the recent media.
  QDBusConnection asker = QDBusConnection::connectToBus(busAddress, "asker");
  QDBusMessage set =
      QDBusMessage::createMethodCall("org.mpris.MediaPlayer2.halvenor", "/org/mpris/MediaPlayer2",
                                     "org.freedesktop.DBus.Properties", "Set");
  set << "org.mpris.MediaPlayer2.Player"
      << "Volume" << QVariant::fromValue(QDBusVariant(qQNaN()));
  asker.call(set);
  QDBusConnection::disconnectFromBus("asker");
  EXPECT_EQ(Ask("volume"), "0.800000");

  // Senders that mean no good, all at once; the program answers others in the meantime.
  std::vector<std::unique_ptr<QLocalSocket>> callers;
  const QByteArray requests[] = {
      QByteArray(4 << 20, 'x'), QByteArray(1000, '\0') + '\n', "[\"", "", "[\"play\", {}]\n",
      "\xff\xfe\xfd\n"};
  for (int i = 0; i < 60; ++i) {
    auto& caller = callers.emplace_back(std::make_unique<QLocalSocket>());
    caller->connectToServer(path);
    if (!caller->waitForConnected(2000)) continue;
    caller->write(requests[static_cast<std::size_t>(i) % std::size(requests)]);
    caller->waitForBytesWritten(50);
  }
  EXPECT_EQ(Control({"play"}), (Outcome{0, ""}));
  for (const auto& caller : callers) {
    EXPECT_TRUE(caller->state() == QLocalSocket::UnconnectedState ||
                caller->waitForDisconnected(10'000));
  }

  EXPECT_EQ(Control({"quit"}), (Outcome{0, ""}));
  EXPECT_EQ(first->ExitStatus(), EXIT_SUCCESS);
  const QSettings kept(environment.value("XDG_CONFIG_HOME") + "/halvenor/halvenor.conf",
                       QSettings::IniFormat);
  const QStringList recent = kept.value("recent/media").toStringList();
  EXPECT_EQ(recent.value(0), Folder() + "Two.flac"); // opened by a command
  EXPECT_EQ(recent.value(2), Folder() + "One.flac"); // and from the command line
  EXPECT_EQ(kept.value("sound/volume").toDouble(), 0.8);
  EXPECT_EQ(first->Lines().back(), "[clr ]");
  // Now the other one has the socket.
  EXPECT_TRUE(Eventually([&] { return Control({"quit"}) == Outcome{0, ""}; }));
  EXPECT_EQ(second->ExitStatus(), EXIT_SUCCESS);
}

TEST_F(ProgramsTest, ListensWithTheTitlesOfOthers) {
  EXPECT_EQ(Run(HALVENOR_PROGRAM, {"--list-sources"}),
            (Outcome{1, "halvenor: there is no sound server"}));
  std::unique_ptr<Program> program = Start({});
  ASSERT_TRUE(Eventually([&] { return program->HasStart("[show]"); }));
  EXPECT_TRUE(Becomes("status", "Stopped")); // media keys are for the others
  ASSERT_TRUE(sound.Start());
  const std::string sources = Run(HALVENOR_PROGRAM, {"--list-sources"}).said;
  EXPECT_NE(sources.find("* alpha.monitor  Loud_alpha"), std::string::npos) << sources;
  EXPECT_NE(sources.find("  beta.monitor   Loud_beta"), std::string::npos) << sources;
  EXPECT_NE(sources.find("(microphone)"), std::string::npos) << sources;

  OtherPlayer early(busAddress, "early");
  early.Say("Playing", "Aria", QStringList{"Bach", "Gould"});
  EXPECT_TRUE(Eventually([&] { return program->HasStart("[vply] Aria - Bach, Gould"); }));
  const std::string tone = Tone("Tone", 60);
  const halvenor::Playing playing(tone, "alpha");
  EXPECT_TRUE(Eventually([&] { return program->HasStart("[vrnd] sound"); }));
  {
    OtherPlayer late(busAddress, "late");
    late.Say("Playing", "Line\nfeed\x1b", "One name");
    EXPECT_TRUE(Eventually([&] { return program->Has("[ctrk] Line feed - One name"); }));
    early.Say("Playing", "Canon", QStringList{"Bach"}); // it began before the other
    late.Say({{"Metadata", 17}, {"PlaybackStatus", QVariantList{1}}});
    EXPECT_TRUE(Eventually([&] { return program->Has("[ctrk] Canon - Bach"); }));
    // A flood of long titles costs no more than a few changes of the track.
    const int changes = program->Count("[ctrk]");
    for (int i = 0; i < 2000; ++i)
      late.Say("Playing", QString(i % 100 ? 100 : 5 << 20, 'x') + QString::number(i), "Flood");
    late.Say("Playing", QString(1 << 20, 'x'), QVariantMap{{"a", 1}});
    EXPECT_TRUE(Eventually([&] { return program->Last("[ctrk]").starts_with("[ctrk] xxxx"); }));
    EXPECT_EQ(Control({"play"}).status, 1); // answers
    EXPECT_LT(program->Count("[ctrk]"), changes + 500);
  } // it goes without a word
  EXPECT_TRUE(Eventually([&] { return program->Last("[ctrk]") == "[ctrk] Canon - Bach"; }));
  bus.kill();
  bus.waitForFinished();
  const int records = program->Count("[vrnd]");
  EXPECT_TRUE(Eventually([&] { return program->Count("[vrnd]") > records + 20; }));
  program->Signal(SIGTERM);
  EXPECT_EQ(program->ExitStatus(), EXIT_SUCCESS);

  // What was chosen is kept, and passed over with a word while it is not there.
  program = Start({"--source", "beta.monitor"});
  const halvenor::Playing onBeta(tone, "beta");
  EXPECT_TRUE(Eventually([&] { return program->HasStart("[vrnd] sound"); }));
  program.reset();
  ASSERT_TRUE(sound.RemoveOutput("beta"));
  program = Start({});
  EXPECT_TRUE(
      Eventually([&] { return program->HasStart("halvenor: The source beta.monitor is not"); }));
  EXPECT_TRUE(Eventually([&] { return program->HasStart("[vrnd] sound"); }));
}

} // namespace
} // namespace halvenor::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv); // for the loops of the other players' threads
  return RUN_ALL_TESTS();
}
