#include "audio/analysis_tap.h"

#include <algorithm>
#include <cstdlib>

namespace halvenor {

namespace {

constexpr std::int64_t kRecordNanoseconds = std::int64_t{kDeliveryMilliseconds} * GST_MSECOND;
constexpr std::int64_t kLongestGap = 40 * GST_MSECOND;
constexpr std::int64_t kSamePlace = 5 * GST_MSECOND;
constexpr std::size_t kMostMarks = 64;
constexpr const char* kTrackEvent = "halvenor-track";

} // namespace

AnalysisTap::AnalysisTap(GstAppSink* sink)
    : analyzer_([this](const AnalyzedSound& analyzed) { Keep(analyzed); }) {
  const std::scoped_lock lock(analyzing_);
  GstAppSinkCallbacks callbacks{};
  callbacks.new_sample = OnSample;
  callbacks.eos = OnEnd;
  gst_app_sink_set_callbacks(sink, &callbacks, this, nullptr);
  const gst_media::Pad pad(gst_element_get_static_pad(GST_ELEMENT(sink), "sink"));
  constexpr auto kEvents = static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM |
                                                        GST_PAD_PROBE_TYPE_EVENT_FLUSH);
  gst_pad_add_probe(pad.get(), kEvents, OnEvent, this, nullptr);
}

AnalysisTap::~AnalysisTap() {
  const std::scoped_lock lock(analyzing_, mutex_);
}

GstEvent* AnalysisTap::MakeTrackEvent(int track) {
  return gst_event_new_custom(GST_EVENT_CUSTOM_DOWNSTREAM,
                              gst_structure_new(kTrackEvent, "track", G_TYPE_INT, track, nullptr));
}

GstFlowReturn AnalysisTap::OnSample(GstAppSink* sink, void* self) {
  if (const gst_media::Sample sample{gst_app_sink_pull_sample(sink)})
    static_cast<AnalysisTap*>(self)->Analyze(sample.get());
  return GST_FLOW_OK;
}

void AnalysisTap::OnEnd(GstAppSink* /*sink*/, void* self) {
  auto* tap = static_cast<AnalysisTap*>(self);
  const std::scoped_lock lock(tap->analyzing_);
  tap->analyzer_.Flush();
  tap->anchored_ = false;
}

GstPadProbeReturn AnalysisTap::OnEvent(GstPad* /*pad*/, GstPadProbeInfo* info, void* self) {
  GstEvent* event = GST_PAD_PROBE_INFO_EVENT(info);
  const GstStructure* content = gst_event_get_structure(event);
  int track = 0;
  if (gst_event_has_name(event, kTrackEvent) != FALSE &&
      gst_structure_get_int(content, "track", &track) != FALSE) {
    auto* tap = static_cast<AnalysisTap*>(self);
    const std::scoped_lock lock(tap->analyzing_);
    tap->track_ = track;
  }
  if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) static_cast<AnalysisTap*>(self)->Forget();
  return GST_PAD_PROBE_OK;
}

/// After a flush the running time begins at 0 again.
void AnalysisTap::Forget() {
  const std::scoped_lock lock(analyzing_, mutex_);
  analyzer_.Reset();
  anchored_ = false;
  count_ = 0;
  marks_.clear();
  counted_.clear();
}

/// A jump in the time begins a new count of records; from one track to the next there is none.
void AnalysisTap::Analyze(GstSample* sample) {
  const std::scoped_lock lock(analyzing_);
  const std::int64_t expected = origin_ + pushed_ * GST_SECOND / kAnalysisRate;
  const std::int64_t time = gst_media::RunningTime(sample).value_or(expected);
  if (!anchored_ || std::abs(time - expected) > kLongestGap) Restart(time);
  const std::int64_t position = gst_media::StreamTime(sample).value_or(time);
  Note({time, position - time, track_});
  const gst_media::Frames frames(sample);
  analyzer_.Push(frames.Values());
  const auto count = static_cast<std::int64_t>(frames.Values().size() / 2);
  pushed_ += count;
  Count(position, count);
}

/// After a jump backwards what had been kept from there on is not heard again.
void AnalysisTap::Restart(std::int64_t time) {
  analyzer_.Flush();
  anchored_ = true;
  origin_ = time;
  pushed_ = 0;
  const std::scoped_lock lock(mutex_);
  while (count_ > 0 && kept_[(first_ + count_ - 1) % kept_.size()].time >= time)
    --count_;
  while (!marks_.empty() && marks_.back().time >= time)
    marks_.pop_back();
}

void AnalysisTap::Note(const Mark& mark) {
  const std::scoped_lock lock(mutex_);
  if (!marks_.empty() && marks_.back().track == mark.track &&
      std::abs(marks_.back().offset - mark.offset) < kSamePlace)
    return;
  if (marks_.size() == kMostMarks) marks_.pop_front();
  marks_.push_back(mark);
}

void AnalysisTap::Count(std::int64_t position, std::int64_t frames) {
  constexpr std::size_t kMostTracks = 4; // that are decoded but not yet heard to their end
  const std::scoped_lock lock(mutex_);
  counted_.try_emplace(track_, Counted{position, 0}).first->second.frames += frames;
  if (counted_.size() > kMostTracks) counted_.erase(counted_.begin());
}

std::optional<double> AnalysisTap::DecodedUntil(int track) {
  const std::scoped_lock lock(mutex_);
  const auto found = counted_.find(track);
  if (found == counted_.end()) return std::nullopt;
  return static_cast<double>(found->second.begin) / static_cast<double>(GST_SECOND) +
         static_cast<double>(found->second.frames) / kAnalysisRate;
}

void AnalysisTap::Keep(const AnalyzedSound& analyzed) {
  const std::scoped_lock lock(mutex_);
  if (count_ == kept_.size()) {
    first_ = (first_ + 1) % kept_.size();
    --count_;
  }
  Timed& timed = kept_[(first_ + count_) % kept_.size()];
  timed.time = origin_ + static_cast<std::int64_t>(analyzed.index) * kRecordNanoseconds;
  timed.record = analyzed.record;
  ++count_;
}

std::optional<AnalysisTap::Timed> AnalysisTap::Take(std::int64_t from, std::int64_t until) {
  const std::scoped_lock lock(mutex_);
  while (count_ > 0 && kept_[first_].time <= until) {
    const Timed& timed = kept_[first_];
    first_ = (first_ + 1) % kept_.size();
    --count_;
    if (timed.time >= from) return timed;
  }
  return std::nullopt;
}

std::optional<AnalysisTap::Place> AnalysisTap::At(std::int64_t time) {
  const std::scoped_lock lock(mutex_);
  if (marks_.empty()) return std::nullopt;
  while (marks_.size() > 1 && marks_[1].time <= time)
    marks_.pop_front();
  const Mark& mark = marks_.front();
  return Place{mark.track, std::max(time, mark.time) + mark.offset};
}

} // namespace halvenor
