#include "audio/playlist_formats.h"

#include "audio/gst_media.h"
#include "files/printable.h"
#include "files/translated.h"

#include <glib.h>

#include <array>
#include <charconv>
#include <fstream>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace halvenor {

namespace {

using Receiver = std::function<bool(const PlaylistEntry&)>;
using gst_media::Text;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kBeginning = 1024; // bytes that tell a format

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool StartsWithCaseless(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         g_ascii_strncasecmp(text.data(), beginning.data(), beginning.size()) == 0;
}

/// Text that is no UTF-8 was Latin-1, of which every byte is a character.
std::string Title(std::string_view text) {
  if (IsUtf8(text)) return Printable(text);
  const Text converted(g_convert(text.data(), static_cast<gssize>(text.size()), "UTF-8",
                                 "ISO-8859-1", nullptr, nullptr, nullptr));
  return converted ? Printable(converted.get()) : "";
}

/// Calls `take` with each line that is not empty until it returns false.
template <typename Take>
void ForEachLine(std::string_view text, const Take& take) {
  while (!text.empty()) {
    const std::size_t end = text.find_first_of("\r\n");
    const std::string_view line = Trimmed(text.substr(0, end));
    if (!line.empty() && !take(line)) return;
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
}

void ParseM3u(std::string_view text, const Receiver& receiver) {
  std::string title;
  ForEachLine(text, [&](std::string_view line) {
    if (line.front() != '#') return receiver({std::string(line), std::exchange(title, {})});
    if (StartsWithCaseless(line, "#EXTINF:"))
      if (const std::size_t comma = line.find(','); comma != std::string_view::npos)
        title = Title(Trimmed(line.substr(comma + 1)));
    return true;
  });
}

/// Entries are numbered, in any order.
void ParsePls(std::string_view text, const Receiver& receiver) {
  std::map<unsigned, PlaylistEntry> entries;
  ForEachLine(text, [&](std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return true;
    const std::string_view value = Trimmed(line.substr(equals + 1));
    for (const bool isFile : {true, false}) {
      const std::string_view key = isFile ? "File" : "Title";
      unsigned number = 0;
      if (!StartsWithCaseless(line, key) ||
          std::from_chars(line.data() + key.size(), line.data() + equals, number).ec != std::errc())
        continue;
      if (isFile) {
        entries[number].medium = value;
      } else {
        entries[number].title = Title(value);
      }
    }
    return entries.size() <= kMostPlaylistEntries;
  });
  for (const auto& [number, entry] : entries)
    if (!entry.medium.empty() && !receiver(entry)) return;
}

/// The addresses and titles within <track>; addresses are relative URIs.
struct XspfReader {
  const Receiver& receiver;
  PlaylistEntry entry;
  std::string text;
  bool inTrack = false;
  bool enough = false;

  static void OnStart(GMarkupParseContext* /*context*/, const char* name, const char** /*names*/,
                      const char** /*values*/, void* self, GError** /*error*/) {
    auto& reader = *static_cast<XspfReader*>(self);
    reader.text.clear();
    if (std::string_view(name) == "track") {
      reader.inTrack = true;
      reader.entry = {};
    }
  }
  static void OnText(GMarkupParseContext* /*context*/, const char* text, gsize length, void* self,
                     GError** /*error*/) {
    constexpr std::size_t kLongestText = 1 << 16;
    auto& reader = *static_cast<XspfReader*>(self);
    if (reader.text.size() < kLongestText) reader.text.append(text, length);
  }
  static void OnEnd(GMarkupParseContext* /*context*/, const char* name, void* self,
                    GError** error) {
    auto& reader = *static_cast<XspfReader*>(self);
    const std::string_view element = name;
    if (!reader.inTrack) return;
    if (element == "location" && reader.entry.medium.empty()) {
      reader.entry.medium = Location(std::string(Trimmed(reader.text)));
    } else if (element == "title") {
      reader.entry.title = Title(Trimmed(reader.text));
    } else if (element == "track") {
      reader.inTrack = false;
      if (reader.entry.medium.empty() || reader.receiver(reader.entry)) return;
      reader.enough = true;
      g_set_error_literal(error, G_MARKUP_ERROR, G_MARKUP_ERROR_INVALID_CONTENT, "enough");
    }
  }
  /// A location without a scheme is a path with escapes.
  static std::string Location(const std::string& location) {
    const Text scheme(g_uri_parse_scheme(location.c_str()));
    if (scheme) return location;
    const Text plain(g_uri_unescape_string(location.c_str(), nullptr));
    return plain ? plain.get() : location;
  }
};

bool ParseXspf(std::string_view text, const Receiver& receiver) {
  constexpr GMarkupParser kParser{XspfReader::OnStart, XspfReader::OnEnd, XspfReader::OnText,
                                  nullptr, nullptr};
  XspfReader reader{receiver, {}, {}};
  const std::unique_ptr<GMarkupParseContext, ReleasedBy<g_markup_parse_context_free>> context(
      g_markup_parse_context_new(&kParser, G_MARKUP_TREAT_CDATA_AS_TEXT, &reader, nullptr));
  const bool whole =
      g_markup_parse_context_parse(context.get(), text.data(), static_cast<gssize>(text.size()),
                                   nullptr) != FALSE &&
      g_markup_parse_context_end_parse(context.get(), nullptr) != FALSE;
  return whole || reader.enough;
}

} // namespace

std::optional<PlaylistFormat> FindPlaylistFormat(std::string_view beginning, bool named) {
  std::string_view text = beginning.substr(0, kBeginning);
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  text = Trimmed(text);
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  if (StartsWithCaseless(text, "#EXTM3U")) return PlaylistFormat::M3u;
  if (StartsWithCaseless(text, "[playlist]")) return PlaylistFormat::Pls;
  if (text.starts_with('<') && text.find("xspf.org") != std::string_view::npos)
    return PlaylistFormat::Xspf;
  return named ? std::optional(PlaylistFormat::M3u) : std::nullopt;
}

std::optional<PlaylistFormat> FindPlaylistFormat(const std::filesystem::path& file, bool named) {
  std::string beginning(kBeginning, '\0');
  std::ifstream stream(file, std::ios::binary);
  stream.read(beginning.data(), kBeginning);
  beginning.resize(static_cast<std::size_t>(stream.gcount()));
  return FindPlaylistFormat(std::string_view(beginning), named);
}

bool ParsePlaylist(PlaylistFormat format, const std::string& bytes, const Receiver& receiver,
                   std::string& problem) {
  std::string_view text = bytes;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  if (text.find('\0') != std::string_view::npos) {
    problem = Translated("halvenor::Playlist", "is not a playlist");
    return false;
  }
  switch (format) {
  case PlaylistFormat::M3u:
    ParseM3u(text, receiver);
    return true;
  case PlaylistFormat::Pls:
    ParsePls(text, receiver);
    return true;
  case PlaylistFormat::Xspf:
    if (ParseXspf(text, receiver)) return true;
    problem = Translated("halvenor::Playlist", "is damaged");
    return false;
  }
  return false;
}

} // namespace halvenor
