#include "audio/sound_kinds.h"

#include "audio/gst_media.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <string_view>

namespace halvenor {

namespace {

using FeatureList = std::unique_ptr<GList, ReleasedBy<gst_plugin_feature_list_free>>;
using namespace gst_media;

/// Containers of sound that GStreamer files under other names than audio/...
constexpr std::array<std::string_view, 6> kContainers{
    "application/ogg",   "application/vnd.rn-realmedia",
    "application/x-ape", "video/x-matroska",
    "video/quicktime",   "video/x-ms-asf",
};
/// What those call films and lists, and what belongs to another file.
constexpr std::array<std::string_view, 16> kNotSound{
    "anx", "asf", "axv", "mk3d", "mkv", "mov", "ogm", "ogv",
    "ogx", "ram", "rm",  "rmvb", "wm",  "wmv", "wvc", "wvp",
};
/// Extensions that the typefinders leave out, each with one of the same kind.
constexpr std::array<std::array<const char*, 2>, 5> kOthers{{
    {"m4b", "m4a"},
    {"m4r", "m4a"},
    {"opus", "oga"},
    {"wave", "wav"},
    {"weba", "webm"},
}};

bool IsSound(const GstCaps* caps) {
  for (unsigned i = 0; i < gst_caps_get_size(caps); ++i) {
    const std::string_view name = gst_structure_get_name(gst_caps_get_structure(caps, i));
    if (name.starts_with("audio/") || std::ranges::find(kContainers, name) != kContainers.end())
      return true;
  }
  return false;
}

std::set<std::string> AskGStreamer() {
  std::set<std::string> found;
  std::string error;
  if (!Start(error)) return found;
  const FeatureList finders(gst_type_find_factory_get_list());
  const FeatureList decoders(
      gst_element_factory_list_get_elements(GST_ELEMENT_FACTORY_TYPE_DECODABLE, GST_RANK_MARGINAL));
  for (const GList* at = finders.get(); at != nullptr; at = at->next) {
    GstTypeFindFactory* finder = GST_TYPE_FIND_FACTORY(at->data);
    const GstCaps* caps = gst_type_find_factory_get_caps(finder);
    if (caps == nullptr || !IsSound(caps)) continue;
    const FeatureList able(
        gst_element_factory_list_filter(decoders.get(), caps, GST_PAD_SINK, FALSE));
    const char* const* names = gst_type_find_factory_get_extensions(finder);
    for (; able && names != nullptr && *names != nullptr; ++names)
      if (std::ranges::find(kNotSound, std::string_view(*names)) == kNotSound.end())
        found.insert(*names);
  }
  for (const auto& [other, known] : kOthers)
    if (found.contains(known)) found.insert(other);
  return found;
}

bool EndsInOneOf(const std::string& name, const std::vector<std::string>& extensions) {
  std::string extension = std::filesystem::path(name).extension().string();
  if (extension.empty()) return false;
  std::ranges::transform(extension, extension.begin(), [](char c) { return g_ascii_tolower(c); });
  return std::ranges::find(extensions, extension.substr(1)) != extensions.end();
}

} // namespace

const std::vector<std::string>& SoundExtensions() {
  static const std::vector<std::string> extensions = [] {
    const std::set<std::string> found = AskGStreamer();
    return std::vector<std::string>(found.begin(), found.end());
  }();
  return extensions;
}

const std::vector<std::string>& PlaylistExtensions() {
  static const std::vector<std::string> extensions{"m3u", "m3u8", "pls", "xspf"};
  return extensions;
}

bool IsSoundName(const std::string& name) {
  return EndsInOneOf(name, SoundExtensions());
}

bool IsPlaylistName(const std::string& medium) {
  return EndsInOneOf(medium, PlaylistExtensions());
}

} // namespace halvenor
