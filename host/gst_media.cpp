#include "host/gst_media.h"

#include <gst/pbutils/missing-plugins.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace halvenor::gst_media {

namespace fs = std::filesystem;

namespace {

using OwnedError = std::unique_ptr<GError, ReleasedBy<g_error_free>>;

std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return text;
}

/// Why the file cannot be a medium; null when it can.
const char* Obstacle(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return "no such file";
  if (fs::is_directory(status)) return "is a folder";
  if (access(path.c_str(), R_OK) != 0) return "may not be read";
  if (fs::is_regular_file(status) && fs::file_size(path, error) == 0) return "is empty";
  return nullptr;
}

std::optional<Medium> FindFile(const std::string& name, const fs::path& path, std::string& error) {
  if (const char* obstacle = Obstacle(path)) {
    error = About(name, obstacle);
    return std::nullopt;
  }
  const Text uri(gst_filename_to_uri(path.c_str(), nullptr));
  if (!uri) {
    error = About(name, "has a name that cannot be opened");
    return std::nullopt;
  }
  const Text shown(g_filename_display_name(path.stem().c_str()));
  return Medium{name, uri.get(), shown.get()};
}

/// Takes over what a description became, or leaves the reason in `error`.
Element Owned(GstElement* made, GError* reason, std::string& error) {
  const OwnedError owned(reason);
  if (made == nullptr) {
    error = OneLine(std::string("GStreamer is not complete: ") + reason->message);
    return nullptr;
  }
  gst_object_ref_sink(made);
  return Element(made);
}

} // namespace

bool Start(std::string& error) {
  GError* reason = nullptr;
  if (gst_init_check(nullptr, nullptr, &reason)) return true;
  const OwnedError owned(reason);
  error = OneLine(std::string("GStreamer cannot be started: ") + (owned ? owned->message : ""));
  return false;
}

std::optional<Medium> Find(const std::string& medium, std::string& error) {
  std::error_code ignored;
  if (fs::exists(medium, ignored) || gst_uri_is_valid(medium.c_str()) == FALSE)
    return FindFile(medium, medium, error);
  if (const Text path(g_filename_from_uri(medium.c_str(), nullptr, nullptr)); path)
    return FindFile(medium, path.get(), error);
  const Text plain(g_uri_unescape_string(medium.c_str(), nullptr));
  const std::string stem = fs::path(plain ? plain.get() : medium).stem().string();
  const Text shown(g_filename_display_name(stem.c_str()));
  return Medium{medium, medium, *shown ? shown.get() : medium};
}

std::string About(const std::string& name, const std::string& text) {
  const Text shown(g_filename_display_name(name.c_str()));
  return OneLine(std::string(shown.get()) + ": " + text);
}

std::string Explain(GstMessage* message) {
  struct Meaning {
    GQuark domain;
    int code;
    const char* text;
  };
  const GQuark resource = gst_resource_error_quark();
  const GQuark stream = gst_stream_error_quark();
  const std::array meanings{
      Meaning{resource, GST_RESOURCE_ERROR_NOT_FOUND, "cannot be found"},
      Meaning{resource, GST_RESOURCE_ERROR_NOT_AUTHORIZED, "may not be read"},
      Meaning{resource, GST_RESOURCE_ERROR_READ, "cannot be read to its end"},
      Meaning{gst_core_error_quark(), GST_CORE_ERROR_MISSING_PLUGIN, "contains no sound"},
      Meaning{stream, GST_STREAM_ERROR_FAILED, "cannot be read"},
      Meaning{stream, GST_STREAM_ERROR_TYPE_NOT_FOUND, "is not sound of a known kind"},
      Meaning{stream, GST_STREAM_ERROR_WRONG_TYPE, "is not sound of a known kind"},
      Meaning{stream, GST_STREAM_ERROR_CODEC_NOT_FOUND, "needs a decoder that is not installed"},
      Meaning{stream, GST_STREAM_ERROR_DECODE, "is damaged"},
      Meaning{stream, GST_STREAM_ERROR_DEMUX, "is damaged"},
      Meaning{stream, GST_STREAM_ERROR_DECRYPT, "is encrypted"},
      Meaning{stream, GST_STREAM_ERROR_DECRYPT_NOKEY, "is encrypted"},
  };
  GError* reason = nullptr;
  gst_message_parse_error(message, &reason, nullptr);
  const OwnedError owned(reason);
  for (const Meaning& meaning : meanings)
    if (g_error_matches(reason, meaning.domain, meaning.code) != FALSE) return meaning.text;
  return OneLine(reason->message);
}

bool ExplainMissingDecoder(GstMessage* message, std::string& text) {
  if (gst_is_missing_plugin_message(message) == FALSE) return false;
  const Text wanted(gst_missing_plugin_message_get_description(message));
  text = OneLine(std::string("needs a part of GStreamer that is not installed: ") + wanted.get());
  return true;
}

bool TakeTags(GstMessage* message, MediaTags& tags) {
  GstTagList* parsed = nullptr;
  gst_message_parse_tag(message, &parsed);
  const std::unique_ptr<GstTagList, ReleasedBy<gst_tag_list_unref>> list(parsed);
  const MediaTags before = tags;
  for (const auto& [tag, member] : {std::pair(GST_TAG_TITLE, &MediaTags::title),
                                    std::pair(GST_TAG_ARTIST, &MediaTags::artist)}) {
    char* value = nullptr;
    if (gst_tag_list_get_string(list.get(), tag, &value) == FALSE) continue;
    const Text owned(value);
    if (*value != '\0') tags.*member = value;
  }
  return tags != before;
}

Element MakePipeline(const std::string& description, const std::string& uri, std::string& error) {
  GError* reason = nullptr;
  GstElement* made =
      gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &reason);
  Element pipeline = Owned(made, reason, error);
  if (pipeline) g_object_set(Part(pipeline, "decoder").get(), "uri", uri.c_str(), nullptr);
  return pipeline;
}

Element MakeSink(const std::string& description, std::string& error) {
  GError* reason = nullptr;
  GstElement* made = gst_parse_bin_from_description_full(description.c_str(), TRUE, nullptr,
                                                         GST_PARSE_FLAG_FATAL_ERRORS, &reason);
  return Owned(made, reason, error);
}

bool HasAudioDevice() {
  const std::unique_ptr<GstDeviceMonitor, ReleasedBy<gst_object_unref>> monitor(
      gst_device_monitor_new());
  gst_device_monitor_add_filter(monitor.get(), "Audio/Sink", nullptr);
  GList* devices = gst_device_monitor_get_devices(monitor.get());
  const bool any = devices != nullptr;
  g_list_free_full(devices, gst_object_unref);
  return any;
}

Element Part(const Element& pipeline, const char* name) {
  return Element(gst_bin_get_by_name(GST_BIN(pipeline.get()), name));
}

Frames::Frames(GstSample* sample) : buffer_(gst_sample_get_buffer(sample)) {
  if (buffer_ == nullptr || gst_buffer_map(buffer_, &map_, GST_MAP_READ) == FALSE) {
    buffer_ = nullptr;
    return;
  }
  values_ = {reinterpret_cast<const float*>(map_.data), map_.size / sizeof(float)};
}

Frames::~Frames() {
  if (buffer_ != nullptr) gst_buffer_unmap(buffer_, &map_);
}

std::optional<std::int64_t> StreamTime(GstSample* sample) {
  const GstBuffer* buffer = gst_sample_get_buffer(sample);
  const GstSegment* segment = gst_sample_get_segment(sample);
  if (buffer == nullptr || segment->format != GST_FORMAT_TIME || !GST_BUFFER_PTS_IS_VALID(buffer))
    return std::nullopt;
  std::uint64_t time = 0;
  const int sign =
      gst_segment_to_stream_time_full(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer), &time);
  if (sign == 0) return std::nullopt;
  return sign * static_cast<std::int64_t>(time);
}

} // namespace halvenor::gst_media
