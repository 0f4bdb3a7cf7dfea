// The records of sound that is being played, ahead of the moment in which it is heard. Private to
// the host library.
#pragma once

#include "host/analyser.h"
#include "host/gst_media.h"

#include <gst/app/gstappsink.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>

namespace halvenor {

/// Analyses what reaches an appsink, on the thread that brings it there, and keeps the records
/// with their times until the host's thread takes them. Must outlive the running pipeline.
class AnalysisTap {
public:
  explicit AnalysisTap(GstAppSink* sink);
  ~AnalysisTap();
  AnalysisTap(const AnalysisTap&) = delete;
  AnalysisTap& operator=(const AnalysisTap&) = delete;

  /// Takes out the oldest record that begins at `from` or later and not after `until`,
  /// nanoseconds of the medium; forgets those before `from`. Any thread.
  std::optional<RenderVisualData> Take(std::int64_t from, std::int64_t until);

private:
  struct Timed {
    std::int64_t time;
    RenderVisualData record;
  };

  static GstFlowReturn OnSample(GstAppSink* sink, void* self);
  static void OnEnd(GstAppSink* sink, void* self);
  void Analyse(GstSample* sample);
  void ForgetFrom(std::int64_t time);
  void Keep(const AnalysedSound& analysed);

  // Held wherever the analyser is used: sound comes on one thread at a time, but not on one alone.
  std::mutex analysing_;
  Analyser analyser_;
  bool anchored_ = false;
  std::int64_t origin_ = 0; // time of the analyser's first frame
  std::int64_t pushed_ = 0; // frames since then

  std::mutex mutex_;
  std::array<Timed, 64> kept_{}; // a ring; when it is full the oldest gives way
  std::size_t first_ = 0;
  std::size_t count_ = 0;
};

} // namespace halvenor
