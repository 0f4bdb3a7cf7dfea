// One medium, and those that follow it without a gap, on their way to the ear. Private to the host
// library.
#pragma once

#include "audio/analysis_tap.h"
#include "audio/gst_media.h"
#include "audio/track_decoder.h"
#include "audio/worker.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace halvenor {

/// A decoder for each track, joined to one stream that goes to the audio sink and to the analysis.
///
/// One thread, the host's, makes all calls. Whatever may wait is done on the worker, in the order
/// of the calls, the end of the pipeline too.
class GaplessPipeline {
public:
  using Clock = std::chrono::steady_clock;

  /// A pipeline for `medium`, which becomes track 0, and `audioSink` (a textual description). It
  /// does nothing before `Play` or `Pause`. On failure returns null and leaves one line in `error`.
  static std::unique_ptr<GaplessPipeline> Make(Worker& worker, const gst_media::Medium& medium,
                                               const std::string& audioSink, std::string& error);
  ~GaplessPipeline();
  GaplessPipeline(const GaplessPipeline&) = delete;
  GaplessPipeline& operator=(const GaplessPipeline&) = delete;

  void Play();
  void Pause();
  /// In the first track that has not been removed.
  void Seek(double seconds);
  void SetVolume(double linear, bool muted);

  /// Makes `medium` the track after the last one. On failure returns none.
  std::optional<int> Join(const gst_media::Medium& medium);
  /// Removes a track that is not heard any more, or never will be.
  void Remove(int track);
  /// Lets the end of a track take effect: what was joined goes on, or the sound ends.
  void ReleaseEnd(int track);

  /// The next message of the pipeline, for the caller to release; null if there is none.
  GstMessage* NextMessage();
  /// Which track the message says was decoded to its end; none for other messages, and when a
  /// `Seek` has been asked for since.
  std::optional<int> DecodedTrack(GstMessage* message) const;
  /// Whether the message comes from what sounds.
  bool IsFromSink(GstMessage* message) const;
  /// Whether it comes from the decoder of that track.
  bool IsFromTrack(GstMessage* message, int track) const;
  bool IsFromPipeline(GstMessage* message) const;
  /// Whether it comes from a decoder that is being removed, and means nothing.
  bool IsFromRemoved(GstMessage* message) const;
  /// The type of what the track's decoder was given, as GStreamer names it; empty if unknown.
  [[nodiscard]] std::string MediaType(int track) const;

  /// What the track has said of itself since the last call; none if nothing new.
  std::optional<TrackDecoder::Tags> NewTags(int track);
  /// When bytes of a stream last came in.
  [[nodiscard]] Clock::time_point LastBytes() const;

  /// The running time that is heard now; none unless the pipeline plays steadily.
  [[nodiscard]] std::optional<std::int64_t> HeardNow() const;
  /// Of what is heard, in seconds.
  [[nodiscard]] std::optional<double> Length() const;
  /// As the track's decoder knows it.
  [[nodiscard]] std::optional<double> TrackLength(int track) const;
  [[nodiscard]] bool CanSeek() const;
  AnalysisTap& Tap();

private:
  struct Parts;
  GaplessPipeline(Worker& worker, std::shared_ptr<Parts> parts);
  [[nodiscard]] std::shared_ptr<TrackDecoder> Find(int track) const;
  void SetState(GstState state);

  Worker& worker_;
  std::shared_ptr<Parts> parts_;
};

} // namespace halvenor
