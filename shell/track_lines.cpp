#include "shell/track_lines.h"

#include "shell/plugin_state.h"

#include <cstring>
#include <string>

namespace halvenor {
namespace {

constexpr std::int32_t kTrackChangeTime = 1000; // milliseconds

// A length-prefixed string as text; text ends at a zero byte, if it holds one.
std::string TextOf(const std::uint8_t* pascalText) {
  const auto* characters = reinterpret_cast<const char*>(pascalText + 1);
  return {characters, strnlen(characters, pascalText[0])};
}

void Replace(std::string*& line, std::string text) {
  auto* replacement = new std::string(std::move(text));
  delete line;
  line = replacement;
}

// False, and the copy cleared, when there is no record.
template <typename Info>
bool Keep(Info& copy, const Info* info) {
  if (info == nullptr) {
    MemClear(&copy, sizeof copy);
    return false;
  }
  std::memcpy(&copy, info, sizeof copy);
  return true;
}

bool TakeTrack(VisualPluginData* record, const TrackInfo* track) {
  if (!Keep(record->trackInfo, track)) return false;
  const std::uint8_t* bytes = record->trackInfo.bytes;
  Replace(record->trackText,
          TextOf(bytes + kTrackTitleOffset) + " - " + TextOf(bytes + kTrackArtistOffset));
  return true;
}

bool TakeStream(VisualPluginData* record, const StreamInfo* stream) {
  if (!Keep(record->streamInfo, stream)) return false;
  Replace(record->streamText, TextOf(record->streamInfo.bytes + kStreamTitleOffset));
  return true;
}

} // namespace

void TakePlay(VisualPluginData* record, const TrackInfo* track, const StreamInfo* stream) {
  const std::int32_t time = record->settings.trackTextDuration;
  if (TakeTrack(record, track)) record->trackTextTime = time;
  if (TakeStream(record, stream)) record->streamTextTime = time;
}

void TakeTrackChange(VisualPluginData* record, const TrackInfo* track, const StreamInfo* stream) {
  if (TakeTrack(record, track)) {
    record->trackTextTime = kTrackChangeTime;
    record->streamTextTime = 0;
  }
  if (TakeStream(record, stream)) {
    record->trackTextTime = 0;
    record->streamTextTime = kTrackChangeTime;
  }
}

} // namespace halvenor
