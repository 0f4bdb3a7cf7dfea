// What a person can tell the program to do, whichever way: one table.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <utility>

namespace halvenor {

class Player;

enum class UserAction {
  OpenFiles,
  OpenFolder,
  OpenAddress,
  Open,
  Quit,
  PlayPause,
  Play,
  Pause,
  Stop,
  Previous,
  Next,
  SeekBack,
  SeekForward,
  Seek,
  Louder,
  Quieter,
  SetVolume,
  Mute,
  ChooseSource,
  Listen,
  FullScreen,
  LeaveFullScreen,
  ShowBar,
  KeepDrawing,
  Configure,
  PressKeys,
  Raise,
  ShowKeys,
  About,
};

enum class MenuName { None, File, Playback, Sound, View, Help };

/// What follows the word of `--control`.
enum class ActionArgument { None, Media, Source, Keys, Percent, Seconds };

/// One action: where it stands in the menus, its keys, its word for `--control`, and what it does.
/// Media keys and panels (MPRIS) run the same rows.
struct ActionRow {
  enum Trait : unsigned { kCheckable = 1, kRepeats = 2, kBeginsGroup = 4 };

  UserAction action;
  MenuName menu = MenuName::None;
  const char* text = ""; ///< in the menu and on the card of keys; to be translated
  const char* keys = ""; ///< QKeySequence, separated by "; "; the first one is shown
  unsigned traits = 0;   ///< of `Trait`
  const char* word = ""; ///< of `--control`; empty: not offered there
  ActionArgument argument = ActionArgument::None;
  const char* help = ""; ///< for `--control`, in English like all that a terminal gets
  /// Why it cannot be done now; empty: it can. Null: it always can.
  QString (*refusal)(const Player& player, const QStringList& arguments) = nullptr;
  /// Null: an action of the window, which has a handler.
  void (*run)(Player& player, const QStringList& arguments) = nullptr;
};

/// A number given to `--control`: absolute, or relative to the present value when it has a sign.
struct Amount {
  double value = 0;
  bool isStep = false;
  [[nodiscard]] double From(double now) const { return isStep ? now + value : value; }
  friend bool operator==(const Amount&, const Amount&) = default;
};
/// None for what is not a finite number.
std::optional<Amount> ReadAmount(const QString& text);

/// Runs the actions of the table.
class UserActions final : public QObject {
  Q_OBJECT

public:
  /// Why an action was not carried out; empty: it was.
  using Handler = std::function<QString(const QStringList& arguments)>;

  /// `player` must outlive this object.
  explicit UserActions(Player& player) : player_(player) {}

  static std::span<const ActionRow> Rows();
  static const ActionRow& Row(UserAction action);

  /// From now on `handler` carries out an action of the window.
  void Handle(UserAction action, Handler handler) { handlers_[action] = std::move(handler); }

  /// Why the action cannot be carried out now; empty: it can.
  [[nodiscard]] QString Refusal(UserAction action, const QStringList& arguments = {}) const;
  /// Carries it out; why not, empty: done.
  QString Run(UserAction action, const QStringList& arguments = {});

private:
  Player& player_;
  std::map<UserAction, Handler> handlers_;
};

} // namespace halvenor
