// Whatever is wrong is said in one line, and leaves nothing behind.
#include "tests/render/program_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>

namespace halvenor {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class BadInputTest : public testing::Test {
protected:
  BadInputTest() {
    const SoundFolder& folder = program_.Folder();
    const std::string good =
        folder.Write("s.flac", "flacenc", {.seconds = 2, .wave = Sine(440, 0.5)});
    std::filesystem::rename(folder.Truncate(good, 0.6), folder.Path("short.flac"));
    folder.WriteBytes("text.flac", "This is no music, and was not meant to be any.\n");
    folder.WriteBytes("empty.flac", "");
    folder.WriteBytes("odd.records", std::string(3000, '\0'));
    std::filesystem::create_directory(folder.Path("folder"));
    const std::string mine = "[Halvenor Presets]\nformat=1\n[Preset 1]\nname=Mine\n";
    std::filesystem::create_directories(folder.Path("halvenor/presets"));
    folder.WriteBytes("halvenor/presets/mine.preset", mine);
    folder.WriteBytes("halvenor/presets/broken.preset", "fade=0.5");
    folder.WriteBytes("two.preset", mine + "[Preset 2]\nname=B\n");
    program_.environment["XDG_DATA_HOME"] = folder.Path("");
    EXPECT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    for (const char* const name : {"full.rgba", "full.png", "full.mkv"})
      std::filesystem::create_symlink("/dev/full", folder.Path(name));
  }

  void ExpectOneLine(const std::vector<std::string>& arguments, const std::string& reason) {
    const std::vector<std::string> before = program_.Names();
    const RunResult result = program_.Run(arguments);
    const std::string what = testing::PrintToString(arguments);
    EXPECT_THAT(result.exitCode, testing::AnyOf(1, 2)) << what;
    EXPECT_EQ(result.output, "") << what;
    EXPECT_THAT(result.errors, StartsWith("halvenor-render: "));
    EXPECT_THAT(result.errors, HasSubstr(reason)) << what;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_EQ(program_.Names(), before) << what;
  }

  ProgramRun program_;
};

TEST_F(BadInputTest, CommandLine) {
  const struct {
    std::vector<std::string> arguments;
    const char* reason;
  } cases[] = {
      {{}, "INPUT"},
      {{"s.flac"}, "nothing to do"},
      {{"s.flac", "-o", "x.avi"}, "x.avi"},
      {{"s.flac", "-o", "x%d%d.png"}, "%d"},
      {{"s.flac", "-o", "x%s.png"}, "%d"},
      {{"s.flac", "-o", "x.png", "--unknown"}, "--unknown"},
      {{"s.flac", "-o", "x.png", "--size", "0x0"}, "--size"},
      {{"s.flac", "-o", "x.png", "--size", "99999x99999"}, "--size"},
      {{"s.flac", "-o", "x.png", "--size", "12"}, "--size"},
      {{"s.flac", "-o", "x.png", "--keys", "h"}, "--keys"},
      {{"s.flac", "-o", "x.png", "--keys", "1:"}, "--keys"},
      {{"s.flac", "-o", "x.png", "--keys", "-1:h"}, "--keys"},
      {{"s.flac", "-o", "x.png", "--keys", "soon:h"}, "--keys"},
      {{"s.flac", "-o", "x.mp4", "--size", "65x64"}, "even"},
      {{"s.flac", "-o", "x.png", "--fps", "0"}, "--fps"},
      {{"s.flac", "-o", "x.png", "--fps", "30/0"}, "--fps"},
      {{"s.flac", "-o", "x.png", "--fps", "1e9"}, "--fps"},
      {{"s.flac", "-o", "x.png", "--draw-rate", "0"}, "--draw-rate"},
      {{"s.flac", "-o", "x.png", "--draw-rate", "90"}, "--draw-rate: 90 is no multiple"},
      {{"s.flac", "-o", "x.png", "--fps", "25", "--draw-rate", "5"}, "no multiple"},
      {{"s.flac", "-o", "x.png", "--start", "-1"}, "--start"},
      {{"s.flac", "-o", "x.png", "--start", "nan"}, "--start"},
      {{"s.flac", "-o", "x.png", "--start", "1e10"}, "--start"},
      {{"s.flac", "-o", "x.png", "--duration", "0"}, "--duration"},
      {{"s.flac", "-o", "x.png", "--duration", "1e-300"}, "--duration"},
      {{"s.flac", "-o", "x.png", "--duration", "inf"}, "--duration"},
      {{"s.flac", "-o", "x.png", "--keys", "nan:h"}, "--keys"},
      {{"s.flac", "-o", "x.png", "--fps", "nan"}, "--fps"},
      {{"s.flac", "-o", "x.png", "--set", "fade=nan"}, "fade"},
      {{"s.flac", "-o", "x.png", "--set", "fade=1.01"}, "fade"},
      {{"s.flac", "-o", "x.png", "--set", "brightness=1"}, "no setting 'brightness'"},
      {{"s.flac", "-o", "x.png", "--set", "a\x1b[2J\nb=1"}, "no setting 'a [2J b'"},
      {{"s.flac", "-o", "x.png", "--set", "fade"}, "NAME=VALUE"},
      {{"s.flac", "-o", "x.png", "--set", "fade=much"}, "fade"},
      {{"s.flac", "-o", "x.png", "--preset", "Mien"}, "no preset \"Mien\"; did you mean \"Mine\""},
      {{"s.flac", "-o", "x.png", "--preset", ""}, "see --list-presets"},
      {{"s.flac", "-o", "x.png", "--preset", "?"}, "see --list-presets"},
      {{"s.flac", "-o", "x.png", "--preset", "Broken"}, "broken.preset: is not a preset file"},
      {{"s.flac", "-o", "x.png", "--preset", "missing.preset"}, "missing.preset: No such file"},
      {{"s.flac", "-o", "x.png", "--preset", "./text.flac"}, "text.flac: is not a preset file"},
      {{"s.flac", "-o", "x.png", "--preset", "two.preset"}, "\"Mine\", \"B\""},
      {{"s.flac", "-o", "x.png", "--preset", "two.preset#C"}, "no preset \"C\"; it has"},
  };
  for (const auto& [arguments, reason] : cases)
    ExpectOneLine(arguments, reason);
}

TEST_F(BadInputTest, Files) {
  const struct {
    std::vector<std::string> arguments;
    const char* reason;
  } cases[] = {
      {{"missing.flac", "-o", "x.mp4"}, "missing.flac"},
      {{"folder", "-o", "x.mp4"}, "folder"},
      {{"--records", "pipe", "-o", "x.png"}, "pipe: is not a regular file"},
      {{"s.flac", "-o", "x.png", "--preset", "./pipe"}, "pipe: is not a regular file"},
      {{"s.flac", "-o", std::string(256, 'x') + ".png"}, "File name too long"},
      {{"text.flac", "-o", "x.mp4"}, "text.flac"},
      {{"empty.flac", "-o", "x.webm"}, "empty"},
      {{"s.flac", "--start", "3", "-o", "x.png"}, "start"},
      {{"s.flac", "-o", "nowhere/x.mp4"}, "nowhere/x.mp4"},
      {{"s.flac", "-o", "folder/../folder/."}, "folder"},
      {{"s.flac", "-o", "x.png", "--dump-records", "folder"}, "folder"},
      {{"--records", "missing", "-o", "x.png"}, "missing"},
      {{"--records", "folder", "-o", "x.png"}, "folder"},
      {{"--records", "odd.records", "-o", "x.png"}, "2050"},
      {{"--records", "empty.flac", "-o", "x.png"}, "whole records"},
      {{"s.flac", "-o", "x.png", "--plugin", "missing"}, "missing"},
      {{"s.flac", "-o", "x.png", "--plugin", "folder"}, "not a plug-in bundle"},
      {{"s.flac", "-o", "x.png", "--plugin", "text.flac"}, "text.flac"},
      {{"s.flac", "-o", "x.png", "--size", "32x32"}, "64x64"},
      {{"s.flac", "-o", "x.png", "--size", "32000x32000"}, "display"},
      {{"s.flac", "-o", "full.rgba", "--size", "64x64"}, "full.rgba: No space left"},
      {{"s.flac", "-o", "full.png", "--size", "64x64"}, "full.png: No space left"},
      {{"s.flac", "-o", "full.mkv", "--size", "64x64"}, "full.mkv: No space left"},
  };
  for (const auto& [arguments, reason] : cases)
    ExpectOneLine(arguments, reason);
}

TEST_F(BadInputTest, SoundThatIsMissingIsToldAndTheRestShown) {
  const RunResult result =
      program_.Run({"short.flac", "-o", "x.mkv", "--size", "64x64", "--fps", "5"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.errors, StartsWith("halvenor-render: short.flac: 0."));
  EXPECT_THAT(result.errors,
              testing::EndsWith(" of its 2.00 seconds of sound are missing or damaged\n"));
  EXPECT_FALSE(program_.Read("x.mkv").empty());
}

// A file that may not grow stands for a disk that fills up later on.
TEST_F(BadInputTest, DiskFillsUpMidway) {
  const auto expectFailure = [this](const std::string& output) {
    ExpectOneLine({"s.flac", "--size", "640x480", "--fps", "30", "--duration", "1", "-o", output,
                   "--set", "numLines=90"},
                  "cannot write x");
  };
  program_.maxFileBytes = 15'000;
  for (const char* const output : {"x.rgba", "x.png", "x.mp4", "x.webm", "x.mkv"})
    expectFailure(output);
  program_.maxFileBytes = 200; // whole pictures would stay
  expectFailure("x%d.png");
}

TEST_F(BadInputTest, NoUsableGl) {
  program_.environment["__EGL_VENDOR_LIBRARY_FILENAMES"] = "/nonexistent";
  ExpectOneLine({"--gl", "driver", "s.flac", "-o", "x.mp4"}, "EGL");
  const RunResult without = program_.Run({"--quiet", "s.flac", "-o", "x.png", "--duration", "0.1"});
  EXPECT_EQ(without.exitCode, 0) << without.errors;
}

TEST_F(BadInputTest, AnOutputThatIsThereStaysUntilTheNewOneIsWhole) {
  program_.Folder().WriteBytes("x.rgba", "old");
  ExpectOneLine({"s.flac", "-o", "x.rgba", "--size", "64x64", "--start", "3"}, "start");
  EXPECT_EQ(program_.Read("x.rgba"), "old");
  program_.Folder().Write("s.mkv", "flacenc ! matroskamux", {.seconds = 1, .wave = Sine(440)});
  ExpectOneLine({"s.mkv", "-o", "folder/../s.mkv"}, "replace the input");
}

} // namespace
} // namespace halvenor
