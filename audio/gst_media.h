// What `AudioReader` and `MediaPlayer` need of GStreamer. Private to the audio library.
#pragma once

#include "audio/media_tags.h"
#include "files/released_by.h"

#include <gst/audio/audio.h>
#include <gst/gst.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace halvenor::gst_media {

using Element = std::unique_ptr<GstElement, ReleasedBy<gst_object_unref>>;
using Pad = std::unique_ptr<GstPad, ReleasedBy<gst_object_unref>>;
using Bus = std::unique_ptr<GstBus, ReleasedBy<gst_object_unref>>;
using Message = std::unique_ptr<GstMessage, ReleasedBy<gst_message_unref>>;
using Sample = std::unique_ptr<GstSample, ReleasedBy<gst_sample_unref>>;
using Caps = std::unique_ptr<GstCaps, ReleasedBy<gst_caps_unref>>;
using Text = std::unique_ptr<char, ReleasedBy<g_free>>;

/// In the nanoseconds of GStreamer's times.
inline constexpr double kSecond = static_cast<double>(GST_SECOND);

/// Starts GStreamer, once per process. On failure returns false and leaves one line in `error`.
/// Any thread.
bool Start(std::string& error);

struct Medium {
  std::string name; ///< as it was given, for messages
  std::string uri;
  std::string path;  ///< of a file; empty for an address
  std::string title; ///< for want of a tag: the file's name without extension
};

/// Finds `medium`, a path or a URI. A path that cannot be read leaves one line in `error`.
std::optional<Medium> Find(const std::string& medium, std::string& error);

/// Whether the medium of that URI comes over the network.
bool IsNetwork(const std::string& uri);

/// A line about the medium of that name.
std::string About(const std::string& name, const std::string& text);

/// What an error message of the bus means for a listener, without the medium's name.
std::string Explain(GstMessage* message);

/// Whether an error message says that the medium cannot be read from any other place.
bool IsSeekRefused(GstMessage* message);

/// Whether the message says which decoder is missing, and then that in `text`.
bool ExplainMissingDecoder(GstMessage* message, std::string& text);

/// Takes over what the list says of the medium; whether something changed.
bool TakeTags(const GstTagList* list, MediaTags& tags);
bool TakeTags(GstMessage* message, MediaTags& tags);
/// The same of a radio station.
bool TakeTags(const GstTagList* list, StreamTags& tags);

/// The beginnings of both pipelines, as GStreamer's textual descriptions: what decodes the first
/// sound stream of its `uri` property, and what turns any sound into what the analyzer takes.
inline constexpr const char* kDecoder =
    "uridecodebin name=decoder caps=audio/x-raw expose-all-streams=false";
inline constexpr const char* kToAnalysis =
    "audioconvert ! audioresample quality=10 ! "
    "audio/x-raw,format=" GST_AUDIO_NE(F32) ",rate=44100,channels=2,layout=interleaved";

/// Makes a pipeline of a textual description. On failure returns null and leaves one line in
/// `error`.
Element MakePipeline(const std::string& description, std::string& error);

/// Makes a bin with one sink pad of a textual description; failure as before.
Element MakeSink(const std::string& description, std::string& error);

/// The element of that name in the pipeline.
Element Part(GstElement* pipeline, const char* name);

/// The type of what a decoder within `whole` was given, as GStreamer names it; empty if unknown.
std::string MediaType(GstElement* whole);

/// The interleaved values of a sample of sound, readable while it lives.
class Frames {
public:
  explicit Frames(GstSample* sample);
  ~Frames();
  Frames(const Frames&) = delete;
  Frames& operator=(const Frames&) = delete;
  [[nodiscard]] std::span<const float> Values() const { return values_; }

private:
  GstBuffer* buffer_;
  GstMapInfo map_{};
  std::span<const float> values_;
};

/// When the sample is heard, nanoseconds from the start of its medium; none if it does not say.
std::optional<std::int64_t> StreamTime(GstSample* sample);
/// The same from when the pipeline began to play.
std::optional<std::int64_t> RunningTime(GstSample* sample);

} // namespace halvenor::gst_media
