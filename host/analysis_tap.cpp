#include "host/analysis_tap.h"

#include <cstdlib>

namespace halvenor {

namespace {

constexpr std::int64_t kRecordTime = std::int64_t{kDeliveryMilliseconds} * GST_MSECOND;
constexpr std::int64_t kLongestGap = 40 * GST_MSECOND;

} // namespace

AnalysisTap::AnalysisTap(GstAppSink* sink)
    : analyser_([this](const AnalysedSound& analysed) { Keep(analysed); }) {
  const std::scoped_lock lock(analysing_);
  GstAppSinkCallbacks callbacks{};
  callbacks.new_sample = OnSample;
  callbacks.eos = OnEnd;
  gst_app_sink_set_callbacks(sink, &callbacks, this, nullptr);
}

AnalysisTap::~AnalysisTap() {
  const std::scoped_lock lock(analysing_, mutex_);
}

GstFlowReturn AnalysisTap::OnSample(GstAppSink* sink, void* self) {
  if (const gst_media::Sample sample{gst_app_sink_pull_sample(sink)})
    static_cast<AnalysisTap*>(self)->Analyse(sample.get());
  return GST_FLOW_OK;
}

void AnalysisTap::OnEnd(GstAppSink* /*sink*/, void* self) {
  auto* tap = static_cast<AnalysisTap*>(self);
  const std::scoped_lock lock(tap->analysing_);
  tap->analyser_.Flush();
}

/// A jump in the medium's time begins a new count of records; after one backwards what had been
/// kept from there on is not heard again.
void AnalysisTap::Analyse(GstSample* sample) {
  const std::scoped_lock lock(analysing_);
  const std::int64_t expected = origin_ + pushed_ * GST_SECOND / kAnalysisRate;
  const std::int64_t time = gst_media::StreamTime(sample).value_or(expected);
  if (!anchored_ || std::abs(time - expected) > kLongestGap) {
    analyser_.Flush();
    ForgetFrom(time);
    anchored_ = true;
    origin_ = time;
    pushed_ = 0;
  }
  const gst_media::Frames frames(sample);
  analyser_.Push(frames.Values());
  pushed_ += static_cast<std::int64_t>(frames.Values().size() / 2);
}

void AnalysisTap::ForgetFrom(std::int64_t time) {
  const std::scoped_lock lock(mutex_);
  while (count_ > 0 && kept_[(first_ + count_ - 1) % kept_.size()].time >= time)
    --count_;
}

void AnalysisTap::Keep(const AnalysedSound& analysed) {
  const std::scoped_lock lock(mutex_);
  if (count_ == kept_.size()) {
    first_ = (first_ + 1) % kept_.size();
    --count_;
  }
  Timed& timed = kept_[(first_ + count_) % kept_.size()];
  timed.time = origin_ + static_cast<std::int64_t>(analysed.index) * kRecordTime;
  timed.record = analysed.record;
  ++count_;
}

std::optional<RenderVisualData> AnalysisTap::Take(std::int64_t from, std::int64_t until) {
  const std::scoped_lock lock(mutex_);
  while (count_ > 0 && kept_[first_].time <= until) {
    const Timed& timed = kept_[first_];
    first_ = (first_ + 1) % kept_.size();
    --count_;
    if (timed.time >= from) return timed.record;
  }
  return std::nullopt;
}

} // namespace halvenor
