#include "render/options.h"

#include "host/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <string_view>
#include <vector>

namespace halvenor::render {
namespace {

constexpr int kMaxSide = 32767;     // a rectangle's coordinates are 16 bits wide
constexpr double kMaxSeconds = 1e9; // about 30 years
constexpr double kMaxFramesPerSecond = 1000;
constexpr double kMinFramesPerSecond = 0.01;
constexpr std::int64_t kFewestDrawn = 50; // a second
constexpr int kUsageError = 2;

/// A number that is the whole of `text`.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number{};
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failed != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

using Problem = std::optional<std::string>;

Problem ParseSize(const std::string& text, Options& options) {
  const std::string_view view(text);
  const std::size_t x = view.find_first_of("xX");
  const auto width = ParseNumber<int>(view.substr(0, x));
  const auto height = x == view.npos ? std::nullopt : ParseNumber<int>(view.substr(x + 1));
  if (!width || !height) return "--size: '" + text + "' is not of the form WIDTHxHEIGHT";
  if (std::min(*width, *height) < 1 || std::max(*width, *height) > kMaxSide)
    return "--size: width and height must lie between 1 and " + std::to_string(kMaxSide);
  options.width = *width;
  options.height = *height;
  return std::nullopt;
}

// "60", "30000/1001" or "29.97"; `option` is what says so.
Problem ParseFrameRate(const std::string& option, const std::string& text, FrameRate& rate) {
  const std::string_view view(text);
  const std::size_t slash = view.find('/');
  std::optional<std::int32_t> numerator = ParseNumber<std::int32_t>(view.substr(0, slash));
  std::optional<std::int32_t> denominator = 1;
  if (slash != view.npos) {
    denominator = ParseNumber<std::int32_t>(view.substr(slash + 1));
  } else if (const auto decimal = ParseNumber<double>(view); !numerator && decimal) {
    constexpr std::int32_t kDecimals = 100'000;
    const double scaled = std::round(*decimal * kDecimals);
    if (std::abs(scaled) < kMaxFramesPerSecond * kDecimals + 1) {
      numerator = static_cast<std::int32_t>(scaled);
      denominator = kDecimals;
    }
  }
  if (!numerator || !denominator || *numerator <= 0 || *denominator <= 0)
    return option + ": '" + text + "' is not a number of frames a second such as 60 or 30000/1001";
  const double perSecond = static_cast<double>(*numerator) / *denominator;
  if (perSecond < kMinFramesPerSecond || perSecond > kMaxFramesPerSecond)
    return option + ": must lie between 0.01 and 1000";
  const std::int32_t common = std::gcd(*numerator, *denominator);
  rate = {*numerator / common, *denominator / common};
  return std::nullopt;
}

// Without `text` as few frames as make trails look as they do in the window.
Problem ChooseDrawRate(const std::optional<std::string>& text, Options& options) {
  const FrameRate shown = options.frameRate;
  if (!text) {
    const std::int64_t wanted = kFewestDrawn * shown.denominator;
    options.drawsPerFrame = (wanted + shown.numerator - 1) / shown.numerator;
    return std::nullopt;
  }
  FrameRate drawn{};
  if (Problem problem = ParseFrameRate("--draw-rate", *text, drawn)) return problem;
  const std::int64_t most = drawn.numerator * shown.denominator;
  const std::int64_t one = shown.numerator * drawn.denominator;
  if (most % one != 0)
    return "--draw-rate: " + *text + " is no multiple of the frames a second that are kept (--fps)";
  options.drawsPerFrame = most / one;
  return std::nullopt;
}

Problem CheckTimes(const Options& options) {
  const auto bad = [](double seconds) { return !(seconds >= 0 && seconds <= kMaxSeconds); };
  const std::string most = " and at most 1000000000 seconds";
  if (bad(options.startSeconds)) return "--start: must be at least 0" + most;
  constexpr double kShortest = 1e-9; // seconds
  if (options.durationSeconds &&
      (bad(*options.durationSeconds) || *options.durationSeconds < kShortest))
    return "--duration: must be more than 0" + most;
  return std::nullopt;
}

// The number of frame numbers in a file name: "%d" or "%0Nd" are one each; "%%" is a plain "%".
std::optional<int> CountFrameNumbers(std::string_view name) {
  int count = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '%') continue;
    ++i;
    if (i < name.size() && name[i] == '%') continue;
    if (i < name.size() && name[i] == '0') ++i;
    if (i < name.size() && name[i] >= '1' && name[i] <= '9') ++i;
    if (i >= name.size() || name[i] != 'd') return std::nullopt;
    ++count;
  }
  return count;
}

Problem FindOutputKind(Options& options) {
  static constexpr std::array<std::pair<std::string_view, OutputKind>, 5> kKinds{{
      {".mp4", OutputKind::Mp4},
      {".webm", OutputKind::WebM},
      {".mkv", OutputKind::Matroska},
      {".png", OutputKind::LastPicture},
      {".rgba", OutputKind::RawFrames},
  }};
  if (options.output == "-") {
    options.outputKind = OutputKind::RawFrames;
    return std::nullopt;
  }
  std::string extension = std::filesystem::path(options.output).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto* const row = std::find_if(kKinds.begin(), kKinds.end(),
                                       [&](const auto& kind) { return kind.first == extension; });
  if (row == kKinds.end())
    return "cannot tell what to write from the name '" + options.output +
           "': use .mp4, .webm, .mkv, .png, .rgba or -";
  options.outputKind = row->second;
  if (row->second != OutputKind::LastPicture) {
    const bool isVideo = row->second != OutputKind::RawFrames;
    if (isVideo && (options.width % 2 != 0 || options.height % 2 != 0))
      return "--size: a video needs an even width and height";
    return std::nullopt;
  }
  const std::optional<int> numbers = CountFrameNumbers(options.output);
  if (!numbers || *numbers > 1)
    return "the name '" + options.output + "' must hold one %d (or %05d, ...) for the frame number";
  if (*numbers == 1) options.outputKind = OutputKind::NumberedPictures;
  return std::nullopt;
}

Problem ParseAssignments(const std::vector<std::string>& texts, Options& options) {
  Settings scratch = DefaultSettings();
  for (const std::string& text : texts) {
    const std::size_t equals = text.find('=');
    if (equals == text.npos) return "--set: '" + text + "' is not of the form NAME=VALUE";
    const std::string name = text.substr(0, equals);
    const SettingField* const field = FindSetting(name);
    if (!field) return "--set: there is no setting '" + name + "'";
    std::string value = text.substr(equals + 1);
    if (const Problem problem = SetFromText(scratch, *field, value)) return "--set: " + *problem;
    options.assignments.push_back({field, std::move(value)});
  }
  return std::nullopt;
}

Problem ParseKeys(const std::vector<std::string>& texts, Options& options) {
  for (const std::string& text : texts) {
    const std::size_t colon = text.find(':');
    double seconds = 0;
    const char* const end = text.data() + std::min(colon, text.size());
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    const bool isTime =
        error == std::errc() && stop == end && seconds >= 0 && seconds <= kMaxSeconds;
    if (colon == text.npos || !isTime || colon + 1 == text.size())
      return "--keys: '" + text + "' is not of the form T:CHARS, for example 2.5:h";
    const auto time = static_cast<std::uint64_t>(seconds * double{kNanosecondsPerSecond});
    for (const char key : ToMacRoman(std::string_view(text).substr(colon + 1)))
      options.keys.push_back({time, key});
  }
  std::stable_sort(options.keys.begin(), options.keys.end(),
                   [](const KeyPress& a, const KeyPress& b) { return a.time < b.time; });
  return std::nullopt;
}

std::string SettingNames() {
  std::string names;
  for (const SettingField& field : SettingFields())
    names += (names.empty() ? "" : ", ") + std::string(field.name);
  return names;
}

} // namespace

std::optional<EarlyEnd> ReadCommandLine(int argc, const char* const* argv, Options& options) {
  std::optional<std::string> size;
  std::optional<std::string> frameRate;
  std::optional<std::string> drawRate;
  std::vector<std::string> assignments;
  std::vector<std::string> keys;
  bool always = false;
  bool quiet = false;

  CLI::App app("Turns the sound of INPUT into moving pictures.", "halvenor-render");
  app.set_version_flag("--version", "halvenor-render " HALVENOR_VERSION);
  app.add_option("INPUT", options.input, "The sound: a file or a URI");
  app.add_option("-o,--output", options.output,
                 ".mp4 .webm .mkv: video with the sound; .png: the last frame, or with %d in the "
                 "name every frame, numbered from 0; .rgba or -: raw RGBA frames, top row first")
      ->type_name("FILE");
  app.add_option("--size", size, "Width and height in pixels [1280x720]")->type_name("WxH");
  app.add_option("--fps", frameRate, "Frames a second, also 30000/1001 [60]")->type_name("N");
  app.add_option("--draw-rate", drawRate,
                 "Frames drawn a second, which decide how trails look: a multiple of --fps; of "
                 "every so many the first is kept [the smallest multiple that is at least 50]")
      ->type_name("N");
  app.add_option("--start", options.startSeconds, "Begin at S seconds of the sound")
      ->type_name("S");
  app.add_option("--duration", options.durationSeconds, "Show S seconds")->type_name("S");
  app.add_option("--preset", options.preset,
                 "A look by its name, or a file (FILE, or FILE#NAME where it holds several)")
      ->type_name("NAME|FILE");
  app.add_flag("--list-presets", options.listPresets,
               "Print the names of all presets, one a line, and end");
  app.add_option("--set", assignments,
                 "A setting, repeatable, made after the preset; showFrameRate is off without it: " +
                     SettingNames())
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("--keys", keys,
                 "Keys pressed at T seconds of what is shown, repeatable; h shows what they do")
      ->type_name("T:CHARS")
      ->allow_extra_args(false);
  app.add_option("--records", options.recordsFile,
                 "Audio records of 2050 bytes, one per 50 ms, used instead of analyzing INPUT, "
                 "which then gives only the sound and the titles and may be left out")
      ->type_name("FILE");
  app.add_option("--dump-records", options.dumpFile, "Write the audio records that were used")
      ->type_name("FILE");
  app.add_option("--preferences", options.preferencesFolder,
                 "Where the preference store lies; default: none")
      ->type_name("DIR");
  app.add_option("--gl", options.gl,
                 "Who draws: this program on the processor, or the installed OpenGL driver")
      ->type_name("cpu|driver")
      ->check(CLI::IsMember({"cpu", "driver"}));
  app.add_option("--plugin", options.pluginPath, "Another plug-in: a bundle or a module")
      ->type_name("PATH");
  auto* const progressFlag =
      app.add_flag("--progress", always, "Report progress, also where there is no terminal");
  auto* const quietFlag =
      app.add_flag("--quiet", quiet, "Report nothing but errors")->excludes(progressFlag);
  app.add_flag("--verbose", options.verbose, "Also show everything that the visualizer logs")
      ->excludes(quietFlag);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {
    return EarlyEnd{app.exit(asked, std::cout, std::cerr), ""};
  } catch (const CLI::ParseError& problem) {
    std::string text = problem.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    return EarlyEnd{kUsageError, text};
  }
  options.progress = quiet    ? ProgressKind::Quiet
                     : always ? ProgressKind::Always
                              : ProgressKind::Automatic;

  if (options.listPresets) return std::nullopt;

  Problem problem;
  if (options.input.empty() && options.recordsFile.empty())
    problem = "no INPUT given (see --help)";
  else if (options.output.empty() && options.dumpFile.empty())
    problem = "nothing to do: give --output or --dump-records (see --help)";
  if (!problem && size) problem = ParseSize(*size, options);
  if (!problem && frameRate) problem = ParseFrameRate("--fps", *frameRate, options.frameRate);
  if (!problem) problem = ChooseDrawRate(drawRate, options);
  if (!problem) problem = CheckTimes(options);
  if (!problem && !options.output.empty()) problem = FindOutputKind(options);
  if (!problem) problem = ParseAssignments(assignments, options);
  if (!problem) problem = ParseKeys(keys, options);
  if (problem) return EarlyEnd{kUsageError, *problem};
  return std::nullopt;
}

} // namespace halvenor::render
