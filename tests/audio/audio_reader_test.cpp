#include "audio/audio_reader.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/sound_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace halvenor {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Content {
  std::vector<RenderVisualData> records;
  std::vector<float> sound;
  MediaTags tags;
  std::optional<double> length;
  std::optional<MissingSound> missing;
  std::string error;
};

Content Read(const std::string& medium, const AudioReaderOptions& options = {}) {
  Content content;
  const auto reader = AudioReader::Open(medium, options, content.error);
  if (!reader) return content;
  while (const AnalyzedSound* analyzed = reader->Next()) {
    EXPECT_EQ(analyzed->index, content.records.size());
    content.records.push_back(analyzed->record);
    content.sound.insert(content.sound.end(), analyzed->sound.begin(), analyzed->sound.end());
  }
  content.tags = reader->Tags();
  content.length = reader->Length();
  content.missing = reader->Missing();
  content.error = reader->Error();
  return content;
}

int PeakBin(const RenderVisualData& record, int channel) {
  const auto* peak = std::ranges::max_element(record.spectrum[channel]);
  return static_cast<int>(peak - record.spectrum[channel]);
}

struct Format {
  const char* file;
  const char* encoder;
  int rate;
  int channels;
  bool lossless;
};

const Format kFormats[] = {
    {"phone.wav", "audio/x-raw,format=U8 ! wavenc", 8000, 1, false},
    {"half.wav", "audio/x-raw,format=S16LE ! wavenc", 22050, 1, true},
    {"cd.wav", "audio/x-raw,format=S16LE ! wavenc", 44100, 2, true},
    {"float.wav", "audio/x-raw,format=F32LE ! wavenc", 48000, 2, true},
    {"surround.wav", "audio/x-raw,format=S24LE ! wavenc", 192000, 8, true},
    {"dvd.flac", "flacenc", 48000, 6, true},
    {"studio.flac", "flacenc", 96000, 2, true},
    {"mono.ogg", "vorbisenc ! oggmux", 44100, 1, false},
    {"stereo.ogg", "vorbisenc ! oggmux", 48000, 2, false},
    {"voice.opus", "opusenc ! oggmux", 16000, 1, false},
    {"music.opus", "opusenc bitrate=192000 ! oggmux", 48000, 2, false},
    {"music.mp3", "lamemp3enc ! id3v2mux", 44100, 2, false},
    {"low.mp3", "lamemp3enc", 22050, 1, false},
    {"music.m4a", "avenc_aac ! mp4mux", 44100, 2, false},
};

TEST(AudioReader, ASineStandsInItsBinWhateverTheFormat) {
  const SoundFolder folder;
  for (const Format& format : kFormats)
    for (const double frequency : {440.0, 3000.0, 10000.0, 15000.0}) {
      // Lossy encoders drop what lies near half of their rate.
      if (frequency > 0.4 * format.rate) continue;
      SCOPED_TRACE(std::string(format.file) + " " + std::to_string(frequency));
      const Content content = Read(folder.Write(
          format.file, format.encoder, {format.rate, format.channels, 0.5, Sine(frequency)}));
      EXPECT_EQ(content.error, "");
      ASSERT_GE(content.records.size(), 10U);
      for (std::size_t k = 2; k < 8; ++k)
        for (int channel = 0; channel < 2; ++channel) {
          const int bin = PeakBin(content.records[k], channel);
          EXPECT_EQ(bin, std::lround(frequency / (kAnalysisRate / 512.0)));
          EXPECT_GE(content.records[k].spectrum[channel][bin], format.lossless ? 255 : 245);
        }
    }
}

TEST(AudioReader, SilenceIsExactlyNothing) {
  const SoundFolder folder;
  for (const Format& format : kFormats) {
    const Content content =
        Read(folder.Write(format.file, format.encoder,
                          {format.rate, format.channels, 0.3, [](double, int) { return 0; }}));
    ASSERT_FALSE(content.records.empty()) << format.file << content.error;
    for (const RenderVisualData& record : content.records)
      for (const auto& channel : record.spectrum)
        EXPECT_EQ(*std::ranges::max_element(channel), 0) << format.file;
  }
}

TEST(AudioReader, ChannelsStayApartOrAreMixedDown) {
  const SoundFolder folder;
  struct Case {
    int channels;
    int sounding; // the channel that has the sine, -1 for all
    bool left, right;
  };
  for (const auto& [channels, sounding, left, right] :
       {Case{1, 0, true, true}, Case{2, 0, true, false}, Case{2, 1, false, true},
        Case{6, 1, false, true}, Case{6, 2, true, true}, Case{8, -1, true, true}}) {
    const auto wave = [sine = Sine(1000), only = sounding](double time, int channel) {
      return only < 0 || channel == only ? sine(time, channel) : 0.0;
    };
    const Content content = Read(folder.Write("a.wav", "wavenc", {44100, channels, 0.3, wave}));
    ASSERT_EQ(content.records.size(), 6U);
    EXPECT_EQ(content.records[3].spectrum[0][12] > 150, left) << channels << sounding;
    EXPECT_EQ(content.records[3].spectrum[1][12] > 150, right) << channels << sounding;
  }
}

/// The first frame louder than `level`.
std::ptrdiff_t Onset(const std::vector<float>& sound, float level = 0.2F) {
  const auto loud = [=](float value) { return std::abs(value) > level; };
  return (std::ranges::find_if(sound, loud) - sound.begin()) / 2;
}

TEST(AudioReader, AStartIsExactAndADurationCutsThere) {
  const SoundFolder folder;
  const auto late = [sine = Sine(1000, 0.7)](double time, int channel) {
    return time < 2 ? 0 : sine(time, channel);
  };
  for (const Format& format : kFormats) {
    SCOPED_TRACE(format.file);
    const std::string path =
        folder.Write(format.file, format.encoder, {format.rate, format.channels, 3, late});
    const Content all = Read(path);
    // Encoders may add a little in front, and nothing says how much.
    EXPECT_NEAR(static_cast<double>(Onset(all.sound)), 88200, format.lossless ? 20 : 2500);
    const Content part = Read(path, {1.2345, 1.1, {}});
    EXPECT_EQ(part.error, "");
    EXPECT_NEAR(static_cast<double>(Onset(all.sound) - Onset(part.sound)), 1.2345 * 44100, 10);
    EXPECT_EQ(part.sound.size(), 2 * 48510U);
    EXPECT_EQ(part.records.size(), 22U);
    EXPECT_NEAR(part.length.value_or(0), 1.1, 0.001);
    EXPECT_NEAR(all.length.value_or(0), 3, format.lossless ? 0.001 : 0.5);
    const Content rest = Read(path, {2.5, 60, {}});
    EXPECT_NEAR(static_cast<double>(rest.sound.size()) / 2, 22050, format.lossless ? 2 : 3000);
  }
}

// A pipe cannot seek: what comes before the start is decoded and skipped.
TEST(AudioReader, AStartIsExactInAPipe) {
  const SoundFolder folder;
  const std::string path = folder.Write(
      "tone.wav", "wavenc", {48000, 1, 1, [](double time, int) { return time < 0.6 ? 0 : 0.5; }});
  const std::string pipe = folder.Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int held = open(pipe.c_str(), O_RDONLY | O_NONBLOCK); // GStreamer opens it twice
  std::thread writer([&] {
    std::ofstream(pipe, std::ios::binary) << std::ifstream(path, std::ios::binary).rdbuf();
  });
  const Content part = Read(pipe, {0.25, {}, {}});
  close(held);
  writer.join();
  EXPECT_EQ(part.error, "");
  EXPECT_NEAR(static_cast<double>(Onset(part.sound)), 0.35 * 44100, 20);
  EXPECT_NEAR(static_cast<double>(part.sound.size()) / 2, 0.75 * 44100, 2);
}

TEST(AudioReader, TagsNameTheSoundOrElseItsFile) {
  const SoundFolder folder;
  const std::string tagger =
      "taginject tags=\"title=\\\"Blå \\\\\\\"2\\\\\\\"\\\",artist=Someone\" ! ";
  const Sound sound{44100, 2, 0.2, Sine(500)};
  for (const char* const encoder : {"flacenc", "vorbisenc ! oggmux", "opusenc ! oggmux",
                                    "lamemp3enc ! id3v2mux", "avenc_aac ! mp4mux"}) {
    const Content content = Read(folder.Write("x", tagger + encoder, sound));
    EXPECT_EQ(content.tags, (MediaTags{"Blå \"2\"", "Someone", ""})) << encoder << content.error;
  }
  const std::string untagged = folder.Write("Ünnamed song.v2.wav", "wavenc", sound);
  EXPECT_EQ(Read(untagged).tags, (MediaTags{"Ünnamed song.v2", "", ""}));
  EXPECT_EQ(Read("file://" + folder.Path("%C3%9Cnnamed%20song.v2.wav")).tags.title,
            "Ünnamed song.v2");
}

TEST(AudioReader, WhatCannotBeReadIsSaidInOneLine) {
  const SoundFolder folder;
  const std::string flac = folder.Write(
      "tone.flac", "flacenc", {44100, 2, 2, [](double, int channel) {
                                 return (std::rand() % 1000 - 500) / 1000.0 * (1 + channel) / 2;
                               }});
  struct Case {
    std::string medium;
    double start;
    const char* error;
    bool readsSome;
  };
  const Case cases[] = {
      {folder.Path("missing.wav"), 0, "no such file", false},
      {"file://" + folder.Path("missing.wav"), 0, "no such file", false},
      {folder.Path(""), 0, "is a folder", false},
      {folder.WriteBytes("empty.mp3", ""), 0, "is empty", false},
      {folder.WriteBytes("text.txt", std::string(5000, 'x')), 0, "isn't a supported audio file",
       false},
      {folder.WriteBytes("magic.flac", "fLaC"), 0, "", false}, // GStreamer's threads differ
      {folder.Write("video.ogv", "fakesink  videotestsrc num-buffers=5 ! theoraenc ! oggmux",
                    {44100, 1, 0.1, Sine(9)}),
       0, "contains no sound", false},
      {folder.Write("nothing.wav", "wavenc", {44100, 2, 0, Sine(9)}), 0, "contains no sound",
       false},
      {flac, 7, "ends before the start", false},
      {"nosuchprotocol://host/song", 0, "not installed", false},
      {"http://127.0.0.1:1/song.mp3", 0, "", false}, // each HTTP plug-in has its own words
  };
  for (const auto& [medium, start, error, readsSome] : cases) {
    const Content content = Read(medium, {start, {}, {}});
    EXPECT_THAT(content.error, HasSubstr(error)) << medium;
    EXPECT_TRUE(content.error.starts_with(medium + ": ")) << content.error;
    EXPECT_THAT(content.error, Not(HasSubstr("\n")));
    EXPECT_EQ(!content.records.empty(), readsSome) << medium;
  }
}

// The header of an AU file with two channels of 16 bits at 44.1 kHz; numbers are big-endian.
std::string AuHeader(std::size_t bytes) {
  constexpr std::uint32_t kLinear16 = 3;
  std::string header = ".snd";
  for (const std::uint32_t number :
       {std::uint32_t{24}, static_cast<std::uint32_t>(bytes), kLinear16, 44100U, 2U})
    for (int shift = 24; shift >= 0; shift -= 8)
      header += static_cast<char>(number >> shift);
  return header;
}

// A cut file of most kinds, and a damaged one of any kind, is read as far as it goes.
TEST(AudioReader, SoundThatIsMissingIsReported) {
  const SoundFolder folder;
  const auto noise = [](double, int) { return (std::rand() % 1000 - 500) / 1000.0; };
  struct Case {
    const char* file;
    const char* encoder;
    bool cutIsSeen;
  };
  for (const auto& [file, encoder, cutIsSeen] :
       {Case{"a.wav", "wavenc", true}, Case{"a.flac", "flacenc", true},
        Case{"a.au", "audio/x-raw,format=S16BE", true}, Case{"a.mp3", "lamemp3enc ! xingmux", true},
        Case{"a.wv", "wavpackenc", true}, Case{"a.mka", "vorbisenc ! matroskamux", true},
        // Nothing at the beginning says how long it is.
        Case{"a.opus", "opusenc ! oggmux", false}, Case{"a.ogg", "vorbisenc ! oggmux", false}}) {
    std::string whole = folder.Write(file, encoder, {44100, 2, 4, noise});
    if (whole.ends_with(".au")) { // the muxers that know its header lose memory
      const std::string samples = ReadText(whole);
      whole = folder.WriteBytes(file, AuHeader(samples.size()) + samples);
    }
    EXPECT_FALSE(Read(whole).missing) << file;
    EXPECT_FALSE(Read(whole, {1, 2, {}}).missing) << file << ", of which a part is read";
    const Content cut = Read(folder.Truncate(whole, 0.6));
    EXPECT_EQ(cut.error, "") << file;
    EXPECT_NEAR(cut.missing ? cut.missing->missing : 0, cutIsSeen ? 1.6 : 0, 0.4) << file;
  }
  EXPECT_TRUE(Read(folder.Truncate(folder.Path("a.flac"), 0.99)).missing) << "is exact";
  std::ifstream file(folder.Path("a.opus"), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  for (std::size_t i = bytes.size() / 4; i < bytes.size() / 2; i += 97)
    bytes[i] = static_cast<char>(~bytes[i]);
  const Content damaged = Read(folder.WriteBytes("damaged.opus", bytes));
  ASSERT_TRUE(damaged.missing);
  EXPECT_NEAR(damaged.missing->missing, 1.5, 0.8);
  EXPECT_EQ(DescribeMissingSound("a\nb", {4, 1.5}),
            "a b: 1.50 of its 4.00 seconds of sound are missing or damaged");
}

TEST(AudioReader, TheDemoTuneFillsTheRange) {
  const Content tune = Read(HALVENOR_DEMO_TUNE);
  EXPECT_EQ(tune.error, "");
  double sum = 0;
  for (const RenderVisualData& record : tune.records)
    for (const auto& channel : record.spectrum)
      for (int bin = 0; bin < 256; ++bin)
        sum += channel[bin];
  const double mean = sum / (512.0 * static_cast<double>(tune.records.size()));
  EXPECT_GT(mean, 15);
  EXPECT_LT(mean, 60);
}

TEST(AudioReader, WaitingForAServerThatIsSilentCanBeGivenUp) {
  const int server = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  ASSERT_EQ(bind(server, generic, size), 0);
  ASSERT_EQ(listen(server, 4), 0);
  ASSERT_EQ(getsockname(server, generic, &size), 0);
  int asked = 0;
  AudioReaderOptions options;
  options.canceled = [&] { return ++asked > 3; };
  const std::string medium =
      "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/stream.mp3";
  EXPECT_EQ(Read(medium, options).error, medium + ": given up");
  close(server);
}

} // namespace
} // namespace halvenor
