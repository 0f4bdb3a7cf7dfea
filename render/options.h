// The command line of halvenor-render.
#pragma once

#include "protocol/settings.h"
#include "render/time_line.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halvenor::render {

/// What kind of output a file name asks for.
enum class OutputKind { Mp4, WebM, Matroska, LastPicture, NumberedPictures, RawFrames };

enum class ProgressKind { Automatic, Always, Quiet };

/// A setting and its value, which has been found to fit it.
struct Assignment {
  const SettingField* field;
  std::string value;
};

/// A key pressed at a time of the shown stretch.
struct KeyPress {
  std::uint64_t time; ///< nanoseconds
  char key;           ///< Mac OS Roman
};

struct Options {
  std::string input;  ///< a path or URI; empty: records only
  std::string output; ///< empty: no pictures; "-": standard output
  OutputKind outputKind = OutputKind::RawFrames;
  int width = 1280;
  int height = 720;
  FrameRate frameRate{60, 1};
  std::int64_t drawsPerFrame = 1; ///< only the first of as many drawn frames is kept
  double startSeconds = 0;
  std::optional<double> durationSeconds;
  std::optional<std::string> preset; ///< a name, FILE or FILE#NAME
  std::optional<Settings> look;      ///< of `preset`
  bool listPresets = false;
  std::vector<Assignment> assignments; ///< made after the look
  std::vector<KeyPress> keys;          ///< in the order of their times
  std::string recordsFile;
  std::string dumpFile;
  std::string preferencesFolder;
  std::string gl;         ///< "cpu" or "driver"; empty: chosen by the platform layer
  std::string pluginPath; ///< empty: the plug-in that belongs to this program
  ProgressKind progress = ProgressKind::Automatic;
  bool verbose = false; ///< shows everything that the plug-in logs, not only errors
};

/// Frames drawn a second.
inline FrameRate DrawRate(const Options& options) {
  return Times(options.frameRate, options.drawsPerFrame);
}

/// Why a program ends before it has begun.
struct EarlyEnd {
  int exitCode;
  std::string error; ///< one line; empty when what was asked for has been printed
};

/// Reads the command line. Prints help and version to standard output.
std::optional<EarlyEnd> ReadCommandLine(int argc, const char* const* argv, Options& options);

} // namespace halvenor::render
