// What is known of the track that is heard. Private to the audio library.
#pragma once

#include "audio/gst_media.h"
#include "audio/media_tags.h"

#include <chrono>
#include <optional>
#include <string>

namespace halvenor {

class GaplessPipeline;

/// One track of a `GaplessPipeline`. It outlives the pipeline: what it has found out is of use when
/// a network medium is tried again.
struct HeardTrack {
  using Clock = std::chrono::steady_clock;

  /// How far its end is prepared.
  enum class End {
    Far,
    Announced, ///< `AboutToEnd` was told
    Released   ///< it takes effect: what was joined goes on, or the sound ends
  };

  int number = 0;
  std::optional<gst_media::Medium> medium;
  MediaTags tags;
  StreamTags stream;
  End end = End::Far;
  std::optional<double> length; ///< seconds
  Clock::time_point lengthSought;

  /// It is heard from its start, or from where it was lost.
  void Begin();
  [[nodiscard]] bool IsNetwork() const;
  /// Whether it has no end; `pipeline` may be null.
  [[nodiscard]] bool IsRadio(const GaplessPipeline* pipeline) const;
  /// Not all media know it from the beginning: asks again now and then, until the end is near.
  void FindLength(const GaplessPipeline& pipeline);
  /// Whether there were any.
  bool TakeNewTags(GaplessPipeline& pipeline);
  /// What is told at the end if clearly less sound than promised was decoded; `decodedLength` is
  /// what its decoder promises, 0 if it does not.
  std::optional<std::string> MissingSound(GaplessPipeline& pipeline, double decodedLength) const;
};

} // namespace halvenor
