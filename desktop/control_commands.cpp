#include "desktop/control_commands.h"

#include "desktop/player.h"
#include "desktop/remote_window.h"
#include "desktop/shown_text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

struct Target {
  Player& player;
  RemoteWindow& window;
};

const QString kDone;

QString NothingPlays(const Player& player) {
  return player.CurrentMode() == Player::Mode::Playing ? kDone : QStringLiteral("nothing plays");
}

QString NothingQueued(const Player& player) {
  return player.CanPlay() ? kDone : QStringLiteral("nothing is queued");
}

QString Play(Target& target, const QStringList&) {
  target.player.Play();
  return NothingQueued(target.player);
}

QString Pause(Target& target, const QStringList&) {
  target.player.Pause();
  return NothingPlays(target.player);
}

QString PlayPause(Target& target, const QStringList&) {
  target.player.PlayPause();
  return NothingQueued(target.player);
}

QString Next(Target& target, const QStringList&) {
  if (!target.player.CanGoNext()) return QStringLiteral("there is no next entry");
  target.player.Next();
  return kDone;
}

QString Previous(Target& target, const QStringList&) {
  target.player.Previous();
  return NothingPlays(target.player);
}

QString Stop(Target& target, const QStringList&) {
  target.player.Stop();
  return kDone;
}

QString Open(Target& target, const QStringList& media) {
  target.player.Open(media);
  return kDone;
}

QString Listen(Target& target, const QStringList& source) {
  target.player.Listen(source.value(0));
  return kDone;
}

QString Key(Target& target, const QStringList& keys) {
  for (const QString& key : keys) {
    if (!target.window.PressKey(key)) return QStringLiteral("%1 is no key").arg(ShownLine(key));
  }
  return kDone;
}

QString FullScreen(Target& target, const QStringList&) {
  target.window.SetFullScreen(!target.window.IsFullScreen());
  return kDone;
}

QString Volume(Target& target, const QStringList& words) {
  constexpr double kPercent = 100;
  const std::optional<Amount> amount = ReadAmount(words[0]);
  target.player.SetVolume(amount->From(target.player.Volume() * kPercent) / kPercent);
  return kDone;
}

QString Seek(Target& target, const QStringList& words) {
  if (!target.player.CanSeek()) return QStringLiteral("there is nothing to seek in");
  target.player.Seek(ReadAmount(words[0])->From(target.player.Position()));
  return kDone;
}

QString Quit(Target& target, const QStringList&) {
  target.window.Quit();
  return kDone;
}

constexpr qsizetype kAnyNumber = 10'000;

struct Command {
  const char* name;
  const char* argument; ///< as the help shows it
  qsizetype minArguments;
  qsizetype maxArguments;
  bool isAmount; ///< its argument is a number
  QString (*run)(Target&, const QStringList& arguments);
  const char* help;
};

constexpr Command kCommands[] = {
    {"play", "", 0, 0, false, Play, "go on, or begin the queue"},
    {"pause", "", 0, 0, false, Pause, "pause"},
    {"play-pause", "", 0, 0, false, PlayPause, "the one or the other"},
    {"next", "", 0, 0, false, Next, "play the next entry"},
    {"previous", "", 0, 0, false, Previous, "this entry from its start, or the one before"},
    {"stop", "", 0, 0, false, Stop, "play and listen no longer"},
    {"open", "FILE...", 1, kAnyNumber, false, Open, "play files, folders, playlists and addresses"},
    {"listen", "[NAME]", 0, 1, false, Listen, "listen to a source, or to what the computer plays"},
    {"key", "KEY...", 1, kAnyNumber, false, Key,
     "press keys: a character, or a name such as Left or Ctrl+Q"},
    {"fullscreen", "", 0, 0, false, FullScreen, "full screen on and off"},
    {"volume", "N", 1, 1, true, Volume, "0 to 100; +N and -N change it"},
    {"seek", "S", 1, 1, true, Seek, "go to that second; +S and -S go on and back"},
    {"quit", "", 0, 0, false, Quit, "end the program"},
};

const Command* Find(const QStringList& words) {
  const auto* found = std::ranges::find_if(kCommands, [&](const Command& command) {
    return words.value(0) == QLatin1String(command.name);
  });
  return found == std::end(kCommands) ? nullptr : found;
}

QString Usage(const Command& command) {
  return QStringLiteral("%1 %2")
      .arg(QLatin1String(command.name), QLatin1String(command.argument))
      .trimmed();
}

} // namespace

QString ControlHelp() {
  constexpr int kColumn = 16;
  QString help;
  for (const Command& command : kCommands) {
    help += QStringLiteral("  %1%2\n")
                .arg(Usage(command).leftJustified(kColumn), QLatin1String(command.help));
  }
  return help;
}

QString ControlFault(const QStringList& words) {
  if (words.isEmpty()) return QStringLiteral("a command is missing");
  const Command* const command = Find(words);
  if (!command) return QStringLiteral("unknown command %1").arg(ShownLine(words[0]));
  const qsizetype arguments = words.size() - 1;
  const bool isCount = arguments >= command->minArguments && arguments <= command->maxArguments;
  if (!isCount || (command->isAmount && !ReadAmount(words[1])))
    return QStringLiteral("the command is: %1").arg(Usage(*command));
  return {};
}

QString RunControl(const QStringList& words, Player& player, RemoteWindow& window) {
  Target target{player, window};
  return Find(words)->run(target, words.mid(1));
}

std::optional<Amount> ReadAmount(const QString& text) {
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  if (!isNumber || !std::isfinite(value)) return std::nullopt;
  return Amount{value, text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-'))};
}

QByteArray WriteRequest(const QStringList& words) {
  return QJsonDocument(QJsonArray::fromStringList(words)).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QStringList> ReadRequest(const QByteArray& line) {
  const QJsonDocument document = QJsonDocument::fromJson(line);
  if (!document.isArray()) return std::nullopt;
  QStringList words;
  for (const auto& word : document.array()) {
    if (!word.isString()) return std::nullopt;
    words.append(word.toString());
  }
  return words;
}

} // namespace halvenor
