// What halvenor-render shows, when, and in which files.
#include "audio/audio_reader.h"
#include "render/time_line.h"
#include "tests/render/program_run.h"
#include "tests/support/fake_plugin.h"
#include "tests/support/servers.h"

#include <gmock/gmock.h>
#include <gst/gst.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <signal.h>
#include <sstream>
#include <sys/stat.h>
#include <thread>

namespace halvenor {
namespace {

using render::TimeOfFrame;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::size_t kFakeFrame = 64 * 48 * 4;
const Arguments kFake{"--plugin", FAKE_PLUGIN, "--size", "64x48", "--quiet"};

Arguments operator+(Arguments left, const Arguments& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

std::vector<Testimony> Testimonies(const std::string& frames) {
  EXPECT_EQ(frames.size() % kFakeFrame, 0u);
  std::vector<Testimony> testimonies(frames.size() / kFakeFrame);
  for (std::size_t i = 0; i < testimonies.size(); ++i)
    std::memcpy(&testimonies[i], frames.data() + i * kFakeFrame, sizeof(Testimony));
  return testimonies;
}

// `count` records, the first waveform byte of each its number.
std::string MarkedRecords(int count) {
  std::string records;
  for (int i = 0; i < count; ++i) {
    records += std::string(sizeof(RenderVisualData), '\0');
    records[records.size() - sizeof(RenderVisualData) + 1] = static_cast<char>(i);
  }
  return records;
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

// What the plug-in was told, but for the sound.
std::vector<std::string> Told(const std::string& text) {
  std::vector<std::string> lines = Lines(text);
  std::erase_if(lines, [](const std::string& line) { return line.starts_with("[vrnd]"); });
  return lines;
}

class RenderTest : public testing::Test {
protected:
  RunResult Succeed(const Arguments& arguments) {
    RunResult result = program_.Run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result;
  }

  // One in the current folder, the same among the person's own, and two in one file.
  void WritePresets() {
    const std::string ember =
        "[Halvenor Presets]\nformat=1\n[Preset 1]\nname=Ember Tide\nfade=0.25\n";
    std::filesystem::create_directories(program_.Path("data/halvenor/presets"));
    for (const char* const name : {"ember.preset", "data/halvenor/presets/ember.preset"})
      program_.Folder().WriteBytes(name, ember);
    program_.Folder().WriteBytes("two.preset", ember + "[Preset 2]\nname=Other #1\nfade=0.75\n");
  }

  ProgramRun program_;
};

TEST_F(RenderTest, ListsPresetsOneALine) {
  program_.environment["XDG_DATA_HOME"] = program_.Path("data");
  WritePresets();
  const std::string own = "data/halvenor/presets/";
  program_.Folder().WriteBytes(own + "marks.ini",
                               "[Halvenor Preset Marks]\nformat=1\nfavourites=ember;\n");
  program_.Folder().WriteBytes(own + "broken.preset", "x");
  const RunResult alone = Succeed({"--list-presets", "--plugin", "nowhere"});
  EXPECT_EQ(alone.output, "Ember Tide\town, favorite\n");
  EXPECT_THAT(alone.errors, HasSubstr("broken.preset: "));
  const RunResult all = Succeed({"--list-presets"});
  EXPECT_GT(std::count(all.output.begin(), all.output.end(), '\n'), 24);
}

TEST_F(RenderTest, FramesAndRecordsComeAtTheirTimes) {
  program_.Folder().WriteBytes("r", MarkedRecords(20));
  const struct {
    const char* fps;
    render::FrameRate rate;
    const char* drawRate; // "": chosen by the program
    std::int64_t drawsPerFrame;
    const char* start;
    const char* duration;
    std::size_t frames;
    std::uint64_t firstRecord;
  } cases[] = {
      {"60", {60, 1}, "", 1, "0", "0.5", 30, 0},
      {"30000/1001", {30000, 1001}, "", 2, "0", "0.5", 15, 0},
      {"24000/1001", {24000, 1001}, "", 3, "0", "0.5", 12, 0},
      {"25", {25, 1}, "", 2, "0", "0.5", 13, 0},
      {"25", {25, 1}, "25", 1, "0", "0.5", 13, 0},
      {"25", {25, 1}, "100", 4, "0", "0.5", 13, 0},
      {"29.97", {2997, 100}, "59.94", 2, "0.25", "0.5", 15, 5},
      {"7", {7, 1}, "", 8, "0", "100", 7, 0}, // to the end of the records
      {"200", {200, 1}, "", 1, "0.97", "100", 10, 19},
      {"0.5", {1, 2}, "", 100, "0", "1", 1, 0},
  };
  for (const auto& [fps, rate, drawRate, drawsPerFrame, start, duration, frames, firstRecord] :
       cases) {
    Arguments arguments{"--records", "r",          "--fps",  fps,  "--start",
                        start,       "--duration", duration, "-o", "-"};
    if (*drawRate != '\0') arguments = arguments + Arguments{"--draw-rate", drawRate};
    const RunResult result = Succeed(kFake + arguments);
    const std::vector<Testimony> seen = Testimonies(result.output);
    ASSERT_EQ(seen.size(), frames) << fps;
    EXPECT_EQ(seen[0].time - seen[0].shownAt, TimeOfFrame(1, render::Times(rate, drawsPerFrame)))
        << fps;
    for (std::size_t i = 0; i < frames; ++i) {
      const std::uint64_t time = seen[i].time - seen[0].time;
      EXPECT_EQ(time, TimeOfFrame(i, rate)) << fps;
      const std::uint64_t record = time / 50'000'000;
      EXPECT_EQ(seen[i].deliveries, record + 1) << fps << " frame " << i;
      EXPECT_EQ(seen[i].lastMark, firstRecord + record) << fps << " frame " << i;
    }
  }
  EXPECT_EQ(TimeOfFrame(30000ull * 3600, {30000, 1001}), 3603'600'000'000'000ull) << "it drifts";
}

// Of the real plug-in: as in the window, trails do not depend on how many frames are kept.
TEST_F(RenderTest, SlowVideosShowThePicturesOfFastOnes) {
  constexpr std::size_t kFrame = 128 * 96 * 4;
  program_.Folder().Write("s.flac", "flacenc", {.seconds = 1, .wave = Sine(440, 0.5)});
  const auto draw = [&](const Arguments& rates) {
    return Succeed(Arguments{"--size", "128x96", "--quiet", "--gl", "cpu", "--set", "autopilot=on",
                             "--set", "showFrameRate=on", "--keys", "0.31:h", "s.flac", "-o", "-"} +
                   rates)
        .output;
  };
  const auto every = [](std::size_t n, const std::string& frames) {
    std::string kept;
    for (std::size_t at = 0; at < frames.size(); at += n * kFrame)
      kept += frames.substr(at, kFrame);
    return kept;
  };
  const std::string fast = draw({});
  EXPECT_EQ(fast.size(), 60 * kFrame);
  EXPECT_TRUE(draw({"--fps", "30"}) == every(2, fast));
  EXPECT_TRUE(draw({"--fps", "20"}) == every(3, fast));
  EXPECT_TRUE(draw({"--fps", "20", "--draw-rate", "120"}) ==
              every(2, draw({"--fps", "40", "--draw-rate", "120"})));
  EXPECT_FALSE(draw({"--fps", "30", "--draw-rate", "30"}) == every(2, fast));
}

TEST_F(RenderTest, ThePluginIsToldWhatItShows) {
  const std::string sound = program_.Folder().Write(
      "Tune.flac", "taginject tags=\"title=\\\"Été\\\",artist=\\\"Щука\\\"\" ! flacenc",
      {.seconds = 0.3, .wave = Sine(440)});
  program_.environment["XDG_DATA_HOME"] = program_.Path("data");
  WritePresets();
  const struct {
    Arguments settings;
    const char* stored;
  } cases[] = {
      {{}, ""},
      {{"--preset", "EMBER tide"}, "0.250000"},
      {{"--preset", "ember.preset"}, "0.250000"},
      {{"--preset", "./two.preset#other #1"}, "0.750000"},
      {{"--set", "fade=0.5", "--preset", "Ember Tide"}, "0.500000"},
      {{"--set", "fade=0.5", "--set", "glow=off"}, "0.500000"},
      {{"--preferences", "."}, ""},
  };
  for (const auto& [settings, stored] : cases) {
    const RunResult result = Succeed(kFake + settings + Arguments{"-o", "x.png", "Tune.flac"});
    EXPECT_THAT(Told(result.errors),
                ElementsAre(std::string("[init] stored: ") + stored,
                            "[show] offscreen whole native 64x48 options 0",
                            "a library that prints", "[vply] \x83t\x8E - Shchuka", "[vstp]",
                            "[hide]", "[clr ]"));
    EXPECT_EQ(result.output, "") << "standard output is for frames alone";
  }
}

TEST_F(RenderTest, KeysArePressedInTimeBeforeTheFrame) {
  program_.Folder().Write("Tune.flac", "flacenc", {.seconds = 0.3, .wave = Sine(440)});
  const RunResult run =
      Succeed(kFake + Arguments{"-o", "x.png", "Tune.flac", "--fps", "20", "--keys", "0.15:\u00FCb",
                                "--keys", "0:a", "--keys", "0.06:h:", "--keys", "99:z"});
  std::string order;
  for (const std::string& line : Lines(run.errors)) {
    if (line.starts_with("[vrnd]")) order += "record ";
    if (line.starts_with("[vevt]")) order += line.substr(7) + " ";
  }
  // 60 frames a second are drawn.
  EXPECT_THAT(order, StartsWith("record 97 record 104 58 record record 159 98 record "));
}

std::string PngPixels(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_file(&image, path.c_str()));
  EXPECT_EQ(image.format & PNG_FORMAT_FLAG_ALPHA, 0u) << "a picture that can be seen through";
  image.format = PNG_FORMAT_RGB;
  std::string pixels(PNG_IMAGE_SIZE(image), '\0');
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
  return pixels;
}

TEST_F(RenderTest, PicturesShowTheRawFrames) {
  program_.Folder().WriteBytes("r", MarkedRecords(3));
  const Arguments show = kFake + Arguments{"--records", "r", "--fps", "20", "-o"};
  Succeed(show + Arguments{"raw.rgba"});
  Succeed(show + Arguments{"last.png"});
  Succeed(show + Arguments{"n%03d.png"});
  EXPECT_THAT(program_.Names(),
              ElementsAre("last.png", "n000.png", "n001.png", "n002.png", "r", "raw.rgba"));
  const std::string raw = program_.Read("raw.rgba");
  ASSERT_EQ(raw.size(), 3 * kFakeFrame);
  for (std::size_t row = 1; row < 48; ++row)
    EXPECT_EQ(static_cast<std::uint8_t>(raw[row * 256]), FakePixel((47 - row) * 256))
        << "row " << row << " from the top";
  for (std::size_t frame = 0; frame < 3; ++frame) {
    std::string opaque;
    for (std::size_t i = 0; i < kFakeFrame; i += 4)
      opaque += raw.substr(frame * kFakeFrame + i, 3);
    EXPECT_EQ(PngPixels(program_.Path("n00" + std::to_string(frame) + ".png")), opaque);
    if (frame == 2) {
      EXPECT_EQ(PngPixels(program_.Path("last.png")), opaque);
    }
  }
}

// Whole frames of the plug-in beside pictures that somebody has looked at. The processor draws the
// same everywhere, but for the last bit of the C library's functions.
TEST_F(RenderTest, LooksAreTheOnesThatWereSeen) {
  for (const std::string name : {"acid-lagoon", "blue-hour-rails", "carousel-ghost", "copper-loom",
                                 "night-ferry", "winter-signal"}) {
    const std::string file = name + ".png";
    Succeed({"--gl", "cpu", "--quiet", "--preset", name, "--set", "numFrequencyLabels=0", "--set",
             "trackTextDuration=0", "--size", "160x90", "--start", "41", "--duration", "1", "-o",
             file, HALVENOR_DEMO_TUNE});
    const std::string drawn = PngPixels(program_.Path(file));
    const std::string seen = PngPixels(PICTURES "/" + file);
    ASSERT_EQ(drawn.size(), seen.size());
    int worst = 0;
    for (std::size_t i = 0; i < seen.size(); ++i)
      worst = std::max(worst, std::abs(static_cast<std::uint8_t>(drawn[i]) -
                                       static_cast<std::uint8_t>(seen[i])));
    if (worst <= 2) continue;
    const std::string left = testing::TempDir() + file;
    std::filesystem::copy_file(program_.Path(file), left,
                               std::filesystem::copy_options::overwrite_existing);
    ADD_FAILURE() << name << " differs by " << worst << ": look at " << left << ", and put it into "
                  << PICTURES << " if it is as it should be";
  }
}

TEST_F(RenderTest, RunsRepeatToTheByte) {
  program_.Folder().Write("s.flac", "flacenc",
                          {.seconds = 0.4, .wave = [](double time, int channel) {
                             return 0.5 * std::sin(time * time * 9000 * (channel + 1));
                           }});
  // The glow takes most of a frame's time: files have more frames without it.
  const Arguments frames{"--size", "160x120", "--fps", "20", "--quiet", "s.flac"};
  const Arguments files{"--size", "160x120",  "--fps",   "50",
                        "--set",  "glow=off", "--quiet", "s.flac"};
  for (const std::string kind : {"rgba", "png", "mp4", "webm", "mkv"}) {
    const Arguments& real = kind == "rgba" ? frames : files;
    Succeed(real + Arguments{"-o", "one." + kind, "--dump-records", "records"});
    // Files tell the second in which they were made.
    if (kind == "mp4") std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    Succeed(real + Arguments{"-o", "two." + kind});
    const std::string one = program_.Read("one." + kind);
    EXPECT_FALSE(one.empty());
    EXPECT_TRUE(one == program_.Read("two." + kind)) << kind;
  }
  EXPECT_EQ(program_.Read("records").size(), 8 * sizeof(RenderVisualData));
  const struct {
    Arguments settings;
    bool isSame;
  } cases[] = {{{"--records", "records"}, true},
               {{"--set", "numLines=3"}, false},
               {{"--set", "showFrameRate=off"}, true}, // as it begins
               {{"--set", "showFrameRate=on"}, false}};
  for (const auto& [settings, isSame] : cases) {
    EXPECT_EQ(Succeed(frames + Arguments{"-o", "two.rgba"} + settings).errors, "");
    EXPECT_EQ(program_.Read("one.rgba") == program_.Read("two.rgba"), isSame) << settings[1];
  }
  Arguments verbose = frames + Arguments{"-o", "two.rgba", "--duration", "0.05", "--gl", "cpu"};
  std::ranges::replace(verbose, "--quiet", "--verbose");
  EXPECT_EQ(
      Succeed(verbose).errors,
      "halvenor-render: Halvenor platform: OpenGL is drawn on the processor: it was asked for\n"
      "halvenor-render: Halvenor : ARB shader support found!\n");
}

// The presentation times of the video frames in a file, nanoseconds.
std::vector<GstClockTime> FrameTimes(const std::string& path) {
  gst_init(nullptr, nullptr);
  const std::string description = "filesrc location=" + path +
                                  " ! decodebin ! video/x-raw ! fakesink name=sink sync=false "
                                  "signal-handoffs=true";
  GstElement* const pipeline = gst_parse_launch(description.c_str(), nullptr);
  GstElement* const sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
  std::vector<GstClockTime> times;
  const auto note = +[](GstElement*, GstBuffer* buffer, GstPad*, std::vector<GstClockTime>* all) {
    all->push_back(GST_BUFFER_PTS(buffer));
  };
  g_signal_connect(sink, "handoff", G_CALLBACK(note), &times);
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  GstBus* const bus = gst_element_get_bus(pipeline);
  constexpr auto kEnds = static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR);
  GstMessage* const end = gst_bus_timed_pop_filtered(bus, 20 * GST_SECOND, kEnds);
  EXPECT_TRUE(end && GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS) << path;
  if (end) gst_message_unref(end);
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(bus);
  gst_object_unref(sink);
  gst_object_unref(pipeline);
  return times;
}

TEST_F(RenderTest, VideosHoldEveryFrameAndTheSoundInStep) {
  constexpr double kClick = 0.9;
  program_.Folder().Write("s.wav", "wavenc", {.seconds = 2, .wave = [&](double time, int) {
                                                return std::abs(time - kClick) < 0.0005 ? 0.9 : 0.0;
                                              }});
  for (const std::string name : {"x.mp4", "x.webm", "x.mkv"}) {
    Succeed(kFake +
            Arguments{"--fps", "25", "--start", "0.4", "--duration", "1.4", "-o", name, "s.wav"});
    const std::vector<GstClockTime> times = FrameTimes(program_.Path(name));
    ASSERT_EQ(times.size(), 35u) << name;
    for (std::size_t i = 0; i < times.size(); ++i)
      EXPECT_NEAR(static_cast<double>(times[i] - times[0]), static_cast<double>(i) * 4e7, 1e6);

    std::string error;
    const auto reader = AudioReader::Open(program_.Path(name), {}, error);
    ASSERT_TRUE(reader) << error;
    std::vector<float> sound;
    while (const AnalyzedSound* const next = reader->Next())
      sound.insert(sound.end(), next->sound.begin(), next->sound.end());
    EXPECT_NEAR(static_cast<double>(sound.size()) / 2 / kAnalysisRate, 1.4, 0.03) << name;
    const auto loudest = std::max_element(
        sound.begin(), sound.end(), [](float a, float b) { return std::abs(a) < std::abs(b); });
    EXPECT_NEAR(static_cast<double>(loudest - sound.begin()) / 2 / kAnalysisRate, kClick - 0.4,
                0.004)
        << name;
  }
}

TEST_F(RenderTest, ASignalCleansUp) {
  program_.Folder().Write("s.flac", "flacenc", {.seconds = 30, .wave = Sine(440)});
  for (const auto& [signal, output] :
       {std::pair(SIGINT, "x.mp4"), std::pair(SIGTERM, "x.rgba"), std::pair(SIGINT, "x.png")}) {
    const pid_t process = program_.Start({"--plugin", FAKE_PLUGIN, "--size", "1280x720", "-o",
                                          output, "--dump-records", "r", "s.flac"});
    Eventually([&] { return program_.Errors().find("[vply]") != std::string::npos; });
    kill(process, signal);
    const RunResult result = program_.Wait(process);
    EXPECT_EQ(result.exitCode, 128 + signal);
    EXPECT_THAT(result.errors, testing::EndsWith("[hide]\n[clr ]\n"));
    EXPECT_THAT(program_.Names(), ElementsAre("s.flac")) << output;
  }
}

// As the opening of a pipe does that nobody reads.
TEST_F(RenderTest, ASignalEndsTheProgramWhileALibraryWaits) {
  ASSERT_EQ(mkfifo(program_.Path("pipe").c_str(), 0600), 0);
  program_.Folder().Write("s.wav", "wavenc", {.seconds = 1, .wave = Sine(440)});
  for (const Arguments& waiting :
       {Arguments{"pipe"}, Arguments{"s.wav", "--dump-records", "pipe"}}) {
    const pid_t process = program_.Start(Arguments{"-o", "x.mkv"} + waiting);
    Eventually([&] { return program_.Names().size() >= 3; }); // a temporary file
    kill(process, SIGTERM);
    EXPECT_EQ(program_.Wait(process).exitCode, 128 + SIGTERM);
    EXPECT_THAT(program_.Names(), ElementsAre("pipe", "s.wav"));
  }
}

} // namespace
} // namespace halvenor
