// The records of sound that is being played, ahead of the moment in which it is heard. Private to
// the audio library.
#pragma once

#include "audio/analyzer.h"
#include "audio/gst_media.h"

#include <gst/app/gstappsink.h>

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>

namespace halvenor {

/// Analyzes what reaches an appsink, on the thread that brings it there, and keeps the records
/// with their times until the host's thread takes them. Times are the pipeline's running times in
/// nanoseconds. Must outlive the running pipeline.
class AnalysisTap {
public:
  struct Timed {
    std::int64_t time;
    RenderVisualData record;
  };
  /// Which track, and where in it, nanoseconds from its start.
  struct Place {
    int track;
    std::int64_t position;
  };

  explicit AnalysisTap(GstAppSink* sink);
  ~AnalysisTap();
  AnalysisTap(const AnalysisTap&) = delete;
  AnalysisTap& operator=(const AnalysisTap&) = delete;

  /// To be sent down the pipeline before the first sound of a track.
  static GstEvent* MakeTrackEvent(int track);

  /// Takes out the oldest record that begins at `from` or later and not after `until`; forgets
  /// those before `from`. Any thread.
  std::optional<Timed> Take(std::int64_t from, std::int64_t until);

  /// What is heard at that time; none before the first sound. Any thread.
  std::optional<Place> At(std::int64_t time);

  /// Up to which second of the track there was sound, counted from where it began or was sought:
  /// holes in it do not count. None for a track without sound. Any thread.
  std::optional<double> DecodedUntil(int track);

private:
  /// Of a track since its beginning or the last seek.
  struct Counted {
    std::int64_t begin; // nanoseconds
    std::int64_t frames;
  };
  /// From `time` on, positions are running times plus `offset`.
  struct Mark {
    std::int64_t time;
    std::int64_t offset;
    int track;
  };

  static GstFlowReturn OnSample(GstAppSink* sink, void* self);
  static void OnEnd(GstAppSink* sink, void* self);
  static GstPadProbeReturn OnEvent(GstPad* pad, GstPadProbeInfo* info, void* self);
  void Analyze(GstSample* sample);
  void Forget();
  void Restart(std::int64_t time);
  void Note(const Mark& mark);
  void Count(std::int64_t position, std::int64_t frames);
  void Keep(const AnalyzedSound& analyzed);

  // Held wherever the analyzer is used: sound comes on one thread at a time, but not on one alone.
  std::mutex analyzing_;
  Analyzer analyzer_;
  bool anchored_ = false;
  std::int64_t origin_ = 0; // time of the analyzer's first frame
  std::int64_t pushed_ = 0; // frames since then
  int track_ = 0;

  std::mutex mutex_;
  std::array<Timed, 96> kept_{}; // a ring; when it is full the oldest gives way
  std::size_t first_ = 0;
  std::size_t count_ = 0;
  std::deque<Mark> marks_;
  std::map<int, Counted> counted_; // by track
};

} // namespace halvenor
