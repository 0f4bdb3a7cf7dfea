#include "audio/heard_track.h"

#include "audio/gapless_pipeline.h"
#include "audio/promised_length.h"

#include <algorithm>

namespace halvenor {

void HeardTrack::Begin() {
  tags = {medium->title, {}, {}};
  stream = {};
}

bool HeardTrack::IsNetwork() const {
  return medium && gst_media::IsNetwork(medium->uri);
}

bool HeardTrack::IsRadio(const GaplessPipeline* pipeline) const {
  return IsNetwork() && !length && (pipeline == nullptr || !pipeline->Length());
}

void HeardTrack::FindLength(const GaplessPipeline& pipeline) {
  constexpr std::chrono::milliseconds kPause{500};
  if (end != End::Far || Clock::now() - lengthSought < kPause) return;
  lengthSought = Clock::now();
  if (const std::optional<double> found = pipeline.Length()) length = found;
}

bool HeardTrack::TakeNewTags(GaplessPipeline& pipeline) {
  const std::optional<TrackDecoder::Tags> found = pipeline.NewTags(number);
  if (!found) return false;
  stream = found->stream;
  tags = IsRadio(&pipeline) ? MediaTags{stream.station, {}, {}} : found->medium;
  if (tags.title.empty()) tags.title = medium->title;
  return true;
}

/// A lost piece of a network medium has been told already.
std::optional<std::string> HeardTrack::MissingSound(GaplessPipeline& pipeline,
                                                    double decodedLength) const {
  const std::optional<double> reached = pipeline.Tap().DecodedUntil(number);
  if (IsNetwork() || !reached) return std::nullopt;
  const double promised = std::max(decodedLength, PromisedByHeader(medium->path).value_or(0));
  const auto missing = FindMissingSound(promised, *reached);
  return missing ? std::optional(DescribeMissingSound(medium->name, *missing)) : std::nullopt;
}

} // namespace halvenor
