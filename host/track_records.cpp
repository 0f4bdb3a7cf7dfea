#include "host/track_records.h"

#include "host/text.h"

#include <algorithm>
#include <span>
#include <string>

namespace halvenor {
namespace {

// Writes `utf8` as a length-prefixed string to the front of `field`, which has room for any.
void PutPascalText(std::span<std::uint8_t, kMaxPascalText + 1> field, std::string_view utf8) {
  const std::string text = ToMacRoman(utf8);
  field[0] = static_cast<std::uint8_t>(text.size());
  std::copy(text.begin(), text.end(), field.begin() + 1);
}

} // namespace

TrackInfo MakeTrackInfo(std::string_view title, std::string_view artist) {
  TrackInfo record{};
  const std::span bytes(record.bytes);
  PutPascalText(bytes.subspan<kTrackTitleOffset, kMaxPascalText + 1>(), title);
  PutPascalText(bytes.subspan<kTrackArtistOffset, kMaxPascalText + 1>(), artist);
  return record;
}

StreamInfo MakeStreamInfo(std::string_view title) {
  StreamInfo record{};
  PutPascalText(std::span(record.bytes).subspan<kStreamTitleOffset, kMaxPascalText + 1>(), title);
  return record;
}

TrackRecords MakeTrackRecords(std::string_view title, std::string_view artist,
                              std::optional<std::string_view> stream) {
  if (artist.empty() && !stream) return {std::nullopt, MakeStreamInfo(title)};
  TrackRecords records{MakeTrackInfo(title, artist), std::nullopt};
  if (stream) records.stream = MakeStreamInfo(*stream);
  return records;
}

} // namespace halvenor
