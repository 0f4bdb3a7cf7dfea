// The program's command line.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

/// The words of the command line as they are given to Qt, which takes "--plugin PATH" for an option
/// of its own but leaves "--plugin=PATH" alone.
class ProgramWords {
public:
  ProgramWords(int argc, char** argv);

  int& Count() { return count_; }
  char** Words() { return pointers_.data(); }

  /// What follows --control, when that is the first word: it is for the running program.
  [[nodiscard]] std::optional<QStringList> Control() const;
  /// Whether what is asked for can be told without a display.
  [[nodiscard]] bool AsksOnlyForText() const;

private:
  std::deque<std::string> words_; // whose addresses stay
  std::vector<char*> pointers_;
  int count_ = 0;
};

/// What is to be shown.
struct StartOptions {
  std::filesystem::path plugin;
  QStringList media;             ///< to be played; empty: it listens
  std::optional<QString> source; ///< to be listened to from now on; empty: the default output
};

/// Understands the words that the application was given. What they ask for in text is printed;
/// then, and when they are wrong, there are none to start with and `exitStatus` is set.
std::optional<StartOptions> ReadCommandLine(int& exitStatus);

} // namespace halvenor
