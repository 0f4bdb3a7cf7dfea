#include "audio/gst_media.h"

#include "audio/local_files.h"
#include "files/printable.h"
#include "files/translated.h"

#include <gst/pbutils/missing-plugins.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace halvenor::gst_media {

namespace fs = std::filesystem;

namespace {

using OwnedError = std::unique_ptr<GError, ReleasedBy<g_error_free>>;

/// A line of ours with texts of others in it.
std::string OneLine(const std::string& text) {
  return Printable(text, kMessageCharacters);
}

/// Why the file cannot be a medium; empty when it can.
std::string Obstacle(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return Translated("halvenor::Audio", "no such file");
  if (fs::is_directory(status)) return Translated("halvenor::Audio", "is a folder");
  if (access(path.c_str(), R_OK) != 0)
    return Translated("halvenor::Audio", "cannot be read: permission denied");
  if (fs::is_regular_file(status) && fs::file_size(path, error) == 0)
    return Translated("halvenor::Audio", "is empty");
  return {};
}

std::optional<Medium> FindFile(const std::string& name, const fs::path& path, std::string& error) {
  if (const std::string obstacle = Obstacle(path); !obstacle.empty()) {
    error = About(name, obstacle);
    return std::nullopt;
  }
  const Text uri(gst_filename_to_uri(path.c_str(), nullptr));
  if (!uri) {
    error = About(name, Translated("halvenor::Audio", "has a name that GStreamer cannot open"));
    return std::nullopt;
  }
  local_files::Allow(uri.get());
  const Text shown(g_filename_display_name(path.stem().c_str()));
  return Medium{name, uri.get(), path, shown.get()};
}

/// Takes over what a description became, or leaves the reason in `error`.
Element Owned(GstElement* made, GError* reason, std::string& error) {
  const OwnedError owned(reason);
  if (made == nullptr) {
    error = OneLine(
        Filled(Translated("halvenor::Audio", "GStreamer is not complete: %1"), {reason->message}));
    return nullptr;
  }
  gst_object_ref_sink(made);
  return Element(made);
}

} // namespace

bool Start(std::string& error) {
  GError* reason = nullptr;
  if (gst_init_check(nullptr, nullptr, &reason)) {
    static std::once_flag guarded;
    std::call_once(guarded, local_files::Guard);
    return true;
  }
  const OwnedError owned(reason);
  error = OneLine(Filled(Translated("halvenor::Audio", "GStreamer cannot be started: %1"),
                         {owned ? owned->message : ""}));
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
  return Medium{medium, medium, {}, *shown ? shown.get() : medium};
}

bool IsNetwork(const std::string& uri) {
  return gst_uri_has_protocol(uri.c_str(), "http") != FALSE ||
         gst_uri_has_protocol(uri.c_str(), "https") != FALSE;
}

std::string About(const std::string& name, const std::string& text) {
  return OneLine(name + ": " + text);
}

std::string Explain(GstMessage* message) {
  constexpr unsigned kFirstHttpError = 400;
  constexpr unsigned kHttpNotFound = 404;
  constexpr unsigned kHttpGone = 410;
  struct Meaning {
    GQuark domain;
    int code;
    const char* text;
  };
  const GQuark resource = gst_resource_error_quark();
  const GQuark stream = gst_stream_error_quark();
  const std::array meanings{
      Meaning{resource, GST_RESOURCE_ERROR_NOT_FOUND,
              HALVENOR_TEXT("halvenor::Audio", "cannot be found")},
      Meaning{resource, GST_RESOURCE_ERROR_NOT_AUTHORIZED,
              HALVENOR_TEXT("halvenor::Audio", "cannot be read: permission denied")},
      Meaning{resource, GST_RESOURCE_ERROR_SEEK,
              HALVENOR_TEXT("halvenor::Audio", "does not support seeking")},
      Meaning{resource, GST_RESOURCE_ERROR_READ,
              HALVENOR_TEXT("halvenor::Audio", "cannot be read to its end")},
      Meaning{gst_core_error_quark(), GST_CORE_ERROR_MISSING_PLUGIN,
              HALVENOR_TEXT("halvenor::Audio", "contains no sound")},
      Meaning{stream, GST_STREAM_ERROR_FAILED, HALVENOR_TEXT("halvenor::Audio", "cannot be read")},
      Meaning{stream, GST_STREAM_ERROR_TYPE_NOT_FOUND,
              HALVENOR_TEXT("halvenor::Audio", "isn't a supported audio file")},
      Meaning{stream, GST_STREAM_ERROR_WRONG_TYPE,
              HALVENOR_TEXT("halvenor::Audio", "isn't a supported audio file")},
      Meaning{stream, GST_STREAM_ERROR_CODEC_NOT_FOUND,
              HALVENOR_TEXT("halvenor::Audio", "needs a decoder that is not installed")},
      Meaning{stream, GST_STREAM_ERROR_DECODE, HALVENOR_TEXT("halvenor::Audio", "is damaged")},
      Meaning{stream, GST_STREAM_ERROR_DEMUX, HALVENOR_TEXT("halvenor::Audio", "is damaged")},
      Meaning{stream, GST_STREAM_ERROR_DECRYPT, HALVENOR_TEXT("halvenor::Audio", "is encrypted")},
      Meaning{stream, GST_STREAM_ERROR_DECRYPT_NOKEY,
              HALVENOR_TEXT("halvenor::Audio", "is encrypted")},
  };
  if (local_files::TakeRefused())
    return Translated("halvenor::Audio", "names a file of this computer, which is not opened");
  const GstStructure* details = nullptr;
  gst_message_parse_error_details(message, &details);
  unsigned status = 0;
  if (details != nullptr && gst_structure_get_uint(details, "http-status-code", &status) != FALSE &&
      status >= kFirstHttpError)
    return Filled(status == kHttpNotFound || status == kHttpGone
                      ? Translated("halvenor::Audio", "cannot be found (HTTP %1)")
                      : Translated("halvenor::Audio", "is refused by its server (HTTP %1)"),
                  {std::to_string(status)});

  GError* reason = nullptr;
  gst_message_parse_error(message, &reason, nullptr);
  const OwnedError owned(reason);
  for (const Meaning& meaning : meanings)
    if (g_error_matches(reason, meaning.domain, meaning.code) != FALSE)
      return Translated("halvenor::Audio", meaning.text);
  return OneLine(reason->message);
}

bool IsSeekRefused(GstMessage* message) {
  GError* reason = nullptr;
  gst_message_parse_error(message, &reason, nullptr);
  const OwnedError owned(reason);
  return g_error_matches(reason, gst_resource_error_quark(), GST_RESOURCE_ERROR_SEEK) != FALSE;
}

bool ExplainMissingDecoder(GstMessage* message, std::string& text) {
  if (gst_is_missing_plugin_message(message) == FALSE) return false;
  const Text wanted(gst_missing_plugin_message_get_description(message));
  text = OneLine(
      Filled(Translated("halvenor::Audio", "needs a part of GStreamer that is not installed: %1"),
             {wanted.get()}));
  return true;
}

namespace {

/// A tag may have megabytes, and is cut to `kShownCharacters` anyway.
constexpr std::size_t kMostTagBytes = 1 << 14;

template <typename Tags, std::size_t N>
bool Take(const GstTagList* list, Tags& tags,
          const std::array<std::pair<const char*, std::string Tags::*>, N>& table) {
  const Tags before = tags;
  for (const auto& [tag, member] : table) {
    char* value = nullptr;
    if (gst_tag_list_get_string(list, tag, &value) == FALSE) continue;
    const Text owned(value);
    const std::string_view beginning = std::string_view(value).substr(0, kMostTagBytes);
    if (std::string text = Printable(beginning); !text.empty()) tags.*member = std::move(text);
  }
  return tags != before;
}

} // namespace

bool TakeTags(const GstTagList* list, MediaTags& tags) {
  return Take(list, tags,
              std::array{std::pair(GST_TAG_TITLE, &MediaTags::title),
                         std::pair(GST_TAG_ARTIST, &MediaTags::artist),
                         std::pair(GST_TAG_ALBUM, &MediaTags::album)});
}

bool TakeTags(const GstTagList* list, StreamTags& tags) {
  return Take(list, tags,
              std::array{std::pair(GST_TAG_ORGANIZATION, &StreamTags::station),
                         std::pair(GST_TAG_TITLE, &StreamTags::title)});
}

bool TakeTags(GstMessage* message, MediaTags& tags) {
  GstTagList* parsed = nullptr;
  gst_message_parse_tag(message, &parsed);
  const std::unique_ptr<GstTagList, ReleasedBy<gst_tag_list_unref>> list(parsed);
  return TakeTags(list.get(), tags);
}

Element MakePipeline(const std::string& description, std::string& error) {
  GError* reason = nullptr;
  GstElement* made =
      gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &reason);
  return Owned(made, reason, error);
}

Element MakeSink(const std::string& description, std::string& error) {
  GError* reason = nullptr;
  GstElement* made = gst_parse_bin_from_description_full(description.c_str(), TRUE, nullptr,
                                                         GST_PARSE_FLAG_FATAL_ERRORS, &reason);
  return Owned(made, reason, error);
}

Element Part(GstElement* pipeline, const char* name) {
  return Element(gst_bin_get_by_name(GST_BIN(pipeline), name));
}

std::string MediaType(GstElement* whole) {
  const Element typefind = Part(whole, "typefind");
  GstCaps* found = nullptr;
  if (typefind) g_object_get(typefind.get(), "caps", &found, nullptr);
  const Caps caps(found);
  return caps ? gst_structure_get_name(gst_caps_get_structure(caps.get(), 0)) : "";
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

namespace {

using ConvertTime = int (*)(const GstSegment*, GstFormat, std::uint64_t, std::uint64_t*);

std::optional<std::int64_t> TimeOf(GstSample* sample, ConvertTime convert) {
  const GstBuffer* buffer = gst_sample_get_buffer(sample);
  const GstSegment* segment = gst_sample_get_segment(sample);
  if (buffer == nullptr || segment->format != GST_FORMAT_TIME || !GST_BUFFER_PTS_IS_VALID(buffer))
    return std::nullopt;
  std::uint64_t time = 0;
  const int sign = convert(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer), &time);
  if (sign == 0) return std::nullopt;
  return sign * static_cast<std::int64_t>(time);
}

} // namespace

std::optional<std::int64_t> StreamTime(GstSample* sample) {
  return TimeOf(sample, gst_segment_to_stream_time_full);
}

std::optional<std::int64_t> RunningTime(GstSample* sample) {
  return TimeOf(sample, gst_segment_to_running_time_full);
}

} // namespace halvenor::gst_media
