#include "audio/playlist.h"

#include "audio/gst_media.h"
#include "audio/playlist_formats.h"
#include "audio/sound_kinds.h"
#include "files/printable.h"
#include "files/translated.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

namespace halvenor {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kLargestList = 64 << 20; // bytes
constexpr int kDeepest = 8;
constexpr std::size_t kMostProblems = 12;
constexpr std::size_t kMostMissing = 10'000;

using gst_media::Text;

/// Addresses of media; anything else in a list is none.
constexpr std::array kMediaSchemes{"http", "https", "rtsp", "rtmp", "mms", "mmsh", "ftp"};

std::string Lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) { return g_ascii_tolower(c); });
  return text;
}

std::string Scheme(const std::string& medium) {
  const Text scheme(g_uri_parse_scheme(medium.c_str()));
  return scheme ? Lower(scheme.get()) : "";
}

/// The path that a file:// URI or a plain path stands for; empty for an address.
fs::path LocalPath(const std::string& medium) {
  const std::string scheme = Scheme(medium);
  if (scheme != "file") return scheme.empty() ? medium : "";
  const Text path(g_filename_from_uri(medium.c_str(), nullptr, nullptr));
  return path ? path.get() : "";
}

/// What the path of an entry may have meant: as it is written, as it is written on other systems,
/// and as its bytes would be read there.
std::vector<fs::path> Spellings(const std::string& entry) {
  std::vector<fs::path> spellings{entry};
  if (const fs::path local = LocalPath(entry); !local.empty() && local != spellings[0])
    spellings.push_back(local);
  std::string slashes = entry;
  std::ranges::replace(slashes, '\\', '/');
  if (slashes != entry) spellings.emplace_back(slashes);
  if (g_utf8_validate(slashes.c_str(), -1, nullptr) != FALSE) return spellings;
  const Text utf8(g_convert(slashes.data(), static_cast<gssize>(slashes.size()), "UTF-8",
                            "ISO-8859-1", nullptr, nullptr, nullptr));
  if (utf8) spellings.emplace_back(utf8.get());
  return spellings;
}

bool IsMediaAddress(const std::string& entry) {
  return std::ranges::find(kMediaSchemes, Scheme(entry)) != kMediaSchemes.end();
}

std::string NaturalKey(const fs::path& path) {
  const Text shown(g_filename_display_name(path.c_str()));
  const Text key(g_utf8_collate_key_for_filename(shown.get(), -1));
  return key.get();
}

class Reader {
public:
  explicit Reader(std::stop_token stop = {}) : stop_(std::move(stop)) {}
  void Read(const std::string& medium, const std::string& title, int depth);
  Playlist TakeResult();

  void ReadFetched(const std::string& address, const std::string& bytes);

private:
  void ReadFolder(const fs::path& folder);
  void ReadList(const fs::path& file, PlaylistFormat format, const std::string& bytes, int depth);
  void ReadEntry(const fs::path& list, const PlaylistEntry& entry, int depth);
  bool Add(std::string medium, std::string title);
  void Complain(const std::string& name, const std::string& what);

  const std::stop_token stop_;
  Playlist result_;
  std::set<fs::path> opened_; // lists and folders, by their canonical paths
  std::size_t left_ = 0;      // problems that were not told
  std::size_t missing_ = 0;   // entries
  bool full_ = false;
};

bool Reader::Add(std::string medium, std::string title) {
  full_ = result_.entries.size() >= kMostPlaylistEntries;
  if (!full_) result_.entries.push_back({std::move(medium), std::move(title)});
  return !full_;
}

void Reader::Complain(const std::string& name, const std::string& what) {
  if (result_.problems.size() + 3 < kMostProblems) {
    result_.problems.push_back(Printable(name) + ": " + what);
  } else {
    ++left_;
  }
}

Playlist Reader::TakeResult() {
  if (left_ > 0)
    result_.problems.push_back(
        Filled(Translated("halvenor::Playlist", "Further problems of this kind: %1"),
               {std::to_string(left_)}));
  if (missing_ >= kMostMissing)
    result_.problems.push_back(
        Translated("halvenor::Playlist", "Too many missing files; stopped checking"));
  if (full_)
    result_.problems.push_back(
        Filled(Translated("halvenor::Playlist", "only the first %1 entries were taken"),
               {std::to_string(kMostPlaylistEntries)}));
  return std::move(result_);
}

void Reader::ReadFolder(const fs::path& folder) {
  std::error_code error;
  std::vector<std::pair<std::string, fs::path>> files;
  std::vector<std::pair<std::string, fs::path>> folders;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (stop_.stop_requested()) return;
    const std::string name = at->path().filename();
    std::error_code ignored;
    if (name.starts_with('.')) continue;
    if (at->is_directory(ignored)) {
      folders.emplace_back(NaturalKey(name), at->path());
    } else if (IsSoundName(name) && at->is_regular_file(ignored)) {
      files.emplace_back(NaturalKey(name), at->path());
    }
  }
  if (error) Complain(folder, Translated("halvenor::Playlist", "cannot be read"));
  std::ranges::sort(files);
  std::ranges::sort(folders);
  for (const auto& [key, file] : files)
    if (!Add(file, {})) return;
  for (const auto& [key, inner] : folders) {
    // Links may lead in a circle.
    const fs::path canonical = fs::canonical(inner, error);
    if (!error && opened_.insert(canonical).second && !full_) ReadFolder(inner);
  }
}

void Reader::ReadEntry(const fs::path& list, const PlaylistEntry& entry, int depth) {
  if (IsMediaAddress(entry.medium)) {
    Add(entry.medium, entry.title);
    return;
  }
  for (const fs::path& path : Spellings(entry.medium)) {
    const fs::path whole = (list.parent_path() / path).lexically_normal();
    std::error_code ignored;
    const fs::file_status status = fs::status(whole, ignored);
    if (!fs::is_directory(status) && !fs::is_regular_file(status)) continue;
    Read(whole, entry.title, depth + 1);
    return;
  }
  if (++missing_ < kMostMissing)
    Complain(list, Filled(Translated("halvenor::Playlist", "an entry is not there: %1"),
                          {Printable(entry.medium)}));
}

void Reader::ReadList(const fs::path& file, PlaylistFormat format, const std::string& bytes,
                      int depth) {
  std::string problem;
  const bool whole = ParsePlaylist(
      format, bytes,
      [&](const PlaylistEntry& entry) {
        ReadEntry(file, entry, depth);
        return !full_ && missing_ < kMostMissing && !stop_.stop_requested();
      },
      problem);
  if (!whole) Complain(file, problem);
}

void Reader::Read(const std::string& medium, const std::string& title, int depth) {
  const fs::path path = LocalPath(medium);
  std::error_code error;
  const fs::file_status status = path.empty() ? fs::file_status() : fs::status(path, error);
  const bool folder = fs::is_directory(status);
  if (!folder && (!fs::is_regular_file(status) || IsSoundName(path))) {
    Add(medium, title);
    return;
  }
  const fs::path canonical = fs::canonical(path, error);
  if (folder) {
    if (opened_.insert(canonical).second) ReadFolder(path);
    return;
  }

  const std::optional<PlaylistFormat> format = FindPlaylistFormat(path, IsPlaylistName(medium));
  if (!format && IsPlaylistName(medium)) {
    Complain(path, Translated("halvenor::Playlist", "is not a playlist"));
  } else if (!format) {
    Add(medium, title);
  } else if (depth > kDeepest) {
    Complain(path, Translated("halvenor::Playlist", "lies in too many other lists"));
  } else if (!opened_.insert(canonical).second) {
    Complain(path, Translated("halvenor::Playlist", "names itself, or is named twice"));
  } else if (fs::file_size(path, error) > kLargestList) {
    Complain(path, Translated("halvenor::Playlist", "is too large for a playlist"));
  } else {
    std::ifstream stream(path, std::ios::binary);
    std::string bytes(fs::file_size(path, error), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    ReadList(fs::absolute(path, error), *format, bytes, depth);
  }
}

void Reader::ReadFetched(const std::string& address, const std::string& bytes) {
  // A web page is no list; the player has a word for it.
  const std::size_t begin = bytes.find_first_not_of(" \t\r\n");
  const bool text = begin != std::string::npos && bytes[begin] != '<';
  const std::optional<PlaylistFormat> format = FindPlaylistFormat(std::string_view(bytes), text);
  if (!format || bytes.find("#EXT-X-") != std::string::npos) {
    Add(address, {});
    return;
  }
  std::string problem;
  const bool whole = ParsePlaylist(
      *format, bytes,
      [&](const PlaylistEntry& entry) {
        const Text medium(g_uri_resolve_relative(address.c_str(), entry.medium.c_str(),
                                                 G_URI_FLAGS_PARSE_RELAXED, nullptr));
        if (medium && IsMediaAddress(medium.get())) return Add(medium.get(), entry.title);
        if (++missing_ < kMostMissing)
          Complain(address, Filled(Translated("halvenor::Playlist", "an entry is no address: %1"),
                                   {Printable(entry.medium)}));
        return missing_ < kMostMissing;
      },
      problem);
  if (!whole && !problem.empty()) Complain(address, problem);
}

} // namespace

Playlist ReadPlaylist(const std::string& medium, std::stop_token stop) {
  Reader reader(std::move(stop));
  reader.Read(medium, {}, 0);
  return reader.TakeResult();
}

bool IsPlaylistAddress(const std::string& medium) {
  if (!Scheme(medium).starts_with("http")) return false;
  return IsPlaylistName(medium.substr(0, medium.find_first_of("?#")));
}

Playlist ReadFetchedPlaylist(const std::string& address, const std::string& bytes) {
  Reader reader;
  reader.ReadFetched(address, bytes);
  return reader.TakeResult();
}

} // namespace halvenor
