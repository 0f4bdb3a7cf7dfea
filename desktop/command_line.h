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

/// The words of the command line as Qt gets them. Qt takes "--plugin PATH" for an option of its own
/// but ignores "--plugin=PATH", so the former becomes the latter.
class ProgramWords {
public:
  ProgramWords(int argc, char** argv);

  int& Count() { return count_; }
  char** Words() { return pointers_.data(); }

  /// The words after --control, if that is the first word: a command for the running program.
  [[nodiscard]] std::optional<QStringList> Control() const;
  /// Whether the answer is text that needs no display.
  [[nodiscard]] bool AsksOnlyForText() const;

private:
  std::deque<std::string> words_; // addresses stay valid
  std::vector<char*> pointers_;
  int count_ = 0;
};

struct StartOptions {
  std::filesystem::path plugin;
  QStringList media;             ///< to play, paths absolute; empty: listen
  std::optional<QString> source; ///< to listen to from now on; empty text: the default output
  bool verbose = false;          ///< show everything that the visualizer logs
};

/// Reads the application's words. If they ask for text, or are wrong, prints that, sets
/// `exitStatus` and returns none.
std::optional<StartOptions> ReadCommandLine(int& exitStatus);

} // namespace halvenor
