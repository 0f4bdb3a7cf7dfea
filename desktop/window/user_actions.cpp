#include "desktop/window/user_actions.h"

#include "desktop/playback/player.h"
#include "desktop/shown_text.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr double kSeekSeconds = 5;
constexpr double kVolumeStep = 0.05;
constexpr double kPercent = 100;

// --- Why an action cannot be carried out --------------------------------------------------------

QString IfNothingPlays(const Player& player, const QStringList&) {
  return player.CurrentMode() == Player::Mode::Playing ? QString()
                                                       : QStringLiteral("Nothing is playing");
}

QString IfNothingIsQueued(const Player& player, const QStringList&) {
  return player.CanPlay() ? QString() : QStringLiteral("There is nothing to play");
}

QString IfNoNext(const Player& player, const QStringList&) {
  return player.CanGoNext() ? QString() : QStringLiteral("There is no next entry");
}

QString IfNoPrevious(const Player& player, const QStringList&) {
  return player.CanGoPrevious() || player.CanSeek() ? QString()
                                                    : QStringLiteral("There is no previous entry");
}

QString IfNotSeekable(const Player& player, const QStringList&) {
  return player.CanSeek() ? QString() : QStringLiteral("Seeking is not possible now");
}

QString IfUnknownSource(const Player& player, const QStringList& source) {
  const QString name = source.value(0);
  if (name.isEmpty() || name == player.ChosenSource()) return {};
  const std::vector<Player::Source> sources = player.Sources();
  if (std::ranges::find(sources, name, &Player::Source::name) != sources.end()) return {};
  return QStringLiteral("Unknown source \"%1\" (see --list-sources)").arg(ShownLine(name));
}

// --- What they do -------------------------------------------------------------------------------

template <void (Player::*Act)()>
void Do(Player& player, const QStringList&) {
  (player.*Act)();
}

template <int Direction>
void SeekBy(Player& player, const QStringList&) {
  player.Seek(player.Position() + Direction * kSeekSeconds);
}

template <int Direction>
void ChangeVolume(Player& player, const QStringList&) {
  player.SetVolume(player.Volume() + Direction * kVolumeStep);
}

void SetVolume(Player& player, const QStringList& words) {
  player.SetVolume(ReadAmount(words[0])->From(player.Volume() * kPercent) / kPercent);
}

void Seek(Player& player, const QStringList& words) {
  player.Seek(ReadAmount(words[0])->From(player.Position()));
}

} // namespace

// To add an action: its name in `UserAction` and a row here; if it is one of the window, a handler
// in MainWindow::HandleActions.
std::span<const ActionRow> UserActions::Rows() {
  using Row = ActionRow;
  static constexpr ActionRow kRows[] = {
      {.action = UserAction::OpenFiles,
       .menu = MenuName::File,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Open Files..."),
       .keys = "Ctrl+O"},
      {.action = UserAction::OpenFolder,
       .menu = MenuName::File,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "Open &Folder..."),
       .keys = "Ctrl+Shift+O"},
      {.action = UserAction::OpenAddress,
       .menu = MenuName::File,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "Open &Address..."),
       .keys = "Ctrl+L"},
      {.action = UserAction::Quit,
       .menu = MenuName::File,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Quit"),
       .keys = "Ctrl+Q",
       .traits = Row::kBeginsGroup,
       .word = "quit",
       .help = "Quit the program"},
      {.action = UserAction::PlayPause,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Play or Pause"),
       .keys = "Space",
       .word = "play-pause",
       .help = "Play or pause",
       .refusal = IfNothingIsQueued,
       .run = Do<&Player::PlayPause>},
      {.action = UserAction::Play,
       .word = "play",
       .help = "Resume, or play the queue from its start",
       .refusal = IfNothingIsQueued,
       .run = Do<&Player::Play>},
      {.action = UserAction::Pause,
       .word = "pause",
       .help = "Pause",
       .refusal = IfNothingPlays,
       .run = Do<&Player::Pause>},
      {.action = UserAction::Stop,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Stop"),
       .keys = "Ctrl+.",
       .word = "stop",
       .help = "Stop playing and listening",
       .run = Do<&Player::Stop>},
      {.action = UserAction::Previous,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "P&revious"),
       .keys = "P",
       .traits = Row::kBeginsGroup,
       .word = "previous",
       .help = "Restart this entry, or play the previous one",
       .refusal = IfNoPrevious,
       .run = Do<&Player::Previous>},
      {.action = UserAction::Next,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Next"),
       .keys = "N",
       .word = "next",
       .help = "Play the next entry",
       .refusal = IfNoNext,
       .run = Do<&Player::Next>},
      {.action = UserAction::SeekBack,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Back 5 Seconds"),
       .keys = "Left",
       .traits = Row::kRepeats,
       .refusal = IfNotSeekable,
       .run = SeekBy<-1>},
      {.action = UserAction::SeekForward,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Forward 5 Seconds"),
       .keys = "Right",
       .traits = Row::kRepeats,
       .refusal = IfNotSeekable,
       .run = SeekBy<1>},
      {.action = UserAction::Seek,
       .word = "seek",
       .argument = ActionArgument::Seconds,
       .help = "Seek to second S; +S and -S seek forward and back",
       .refusal = IfNotSeekable,
       .run = Seek},
      {.action = UserAction::Louder,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "Volume &Up"),
       .keys = "Up",
       .traits = Row::kRepeats | Row::kBeginsGroup,
       .run = ChangeVolume<1>},
      {.action = UserAction::Quieter,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "Volume &Down"),
       .keys = "Down",
       .traits = Row::kRepeats,
       .run = ChangeVolume<-1>},
      {.action = UserAction::SetVolume,
       .word = "volume",
       .argument = ActionArgument::Percent,
       .help = "Set the volume, 0 to 100; +N and -N change it",
       .run = SetVolume},
      {.action = UserAction::Mute,
       .menu = MenuName::Playback,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Mute"),
       .keys = "M",
       .traits = Row::kCheckable,
       .run = [](Player& player, const QStringList&) { player.SetMuted(!player.IsMuted()); }},
      {.action = UserAction::Open,
       .word = "open",
       .argument = ActionArgument::Media,
       .help = "Play files, folders, playlists and addresses",
       .run = [](Player& player, const QStringList& media) { player.Open(media); }},
      {.action = UserAction::ChooseSource,
       .menu = MenuName::Sound,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Choose Source..."),
       .keys = "O"},
      {.action = UserAction::Listen,
       .word = "listen",
       .argument = ActionArgument::Source,
       .help = "Listen to a source, or to what the computer plays",
       .refusal = IfUnknownSource,
       .run = [](Player& player, const QStringList& source) { player.Listen(source.value(0)); }},
      {.action = UserAction::FullScreen,
       .menu = MenuName::View,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Full Screen"),
       .keys = "F; F11",
       .traits = Row::kCheckable,
       .word = "fullscreen",
       .help = "Enter or leave full screen"},
      {.action = UserAction::LeaveFullScreen,
       .menu = MenuName::View,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Leave Full Screen"),
       .keys = "Esc"},
      {.action = UserAction::ShowBar,
       .menu = MenuName::View,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Transport Bar"),
       .keys = "Ctrl+T",
       .traits = Row::kCheckable | Row::kBeginsGroup},
      {.action = UserAction::KeepDrawing,
       .menu = MenuName::View,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "Keep &Drawing When Idle"),
       .keys = "Ctrl+D",
       .traits = Row::kCheckable},
      {.action = UserAction::Configure,
       .menu = MenuName::View,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Configure %1..."),
       .traits = Row::kBeginsGroup},
      {.action = UserAction::PressKeys,
       .word = "key",
       .argument = ActionArgument::Keys,
       .help = "Press keys: a character, or a name such as Left or Ctrl+Q"},
      {.action = UserAction::Raise}, // for other programs only
      {.action = UserAction::ShowKeys,
       .menu = MenuName::Help,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&Keyboard Shortcuts"),
       .keys = "F1"},
      {.action = UserAction::About,
       .menu = MenuName::Help,
       .text = QT_TRANSLATE_NOOP("halvenor::UserActions", "&About Halvenor")},
  };
  return kRows;
}

const ActionRow& UserActions::Row(UserAction action) {
  return *std::ranges::find(Rows(), action, &ActionRow::action);
}

QString UserActions::Refusal(UserAction action, const QStringList& arguments) const {
  const ActionRow& row = Row(action);
  return row.refusal ? row.refusal(player_, arguments) : QString();
}

QString UserActions::Run(UserAction action, const QStringList& arguments) {
  if (QString refusal = Refusal(action, arguments); !refusal.isEmpty()) return refusal;
  const ActionRow& row = Row(action);
  if (!row.run) return handlers_.at(action)(arguments);
  row.run(player_, arguments);
  return {};
}

std::optional<Amount> ReadAmount(const QString& text) {
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  if (!isNumber || !std::isfinite(value)) return std::nullopt;
  return Amount{value, text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-'))};
}

} // namespace halvenor
