#include "config_window/live_settings.h"

#include <chrono>
#include <utility>

namespace halvenor {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kWatching{100};
constexpr milliseconds kBlending{16};

} // namespace

LiveSettings::LiveSettings() {
  clock_.start();
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, &LiveSettings::Flush);
}

void LiveSettings::Watch(bool watched) {
  watched_ = watched;
  Flush();
}

void LiveSettings::Edit(std::function<void(Settings&)> edit) {
  edits_.push_back(std::move(edit));
  timer_.start(0);
}

void LiveSettings::Flush() {
  PresetSwitcher::Event event = PresetSwitcher::Event::None;
  const auto edits = std::exchange(edits_, {});
  const std::optional<Settings> now = record_.Change([&](Settings& settings) {
    for (const auto& edit : edits)
      edit(settings);
    const PresetSwitcher::Step step =
        switcher_.Advance(settings, static_cast<double>(clock_.nsecsElapsed()) * 1e-9);
    if (step.write) settings = *step.write;
    event = step.event;
  });
  present_ = now;
  Schedule();
  emit Seen();
  Report(event);
}

// A guard that had to wait for a frame is followed by as long a pause: software drawing leaves no
// time for sixty guards a second.
void LiveSettings::Schedule() {
  const bool blending = switcher_.IsBlending();
  if (!watched_ && !blending && !switcher_.IsSwitching()) {
    timer_.stop();
    return;
  }
  timer_.start(blending ? kBlending : kWatching);
}

void LiveSettings::Report(PresetSwitcher::Event event) {
  using Event = PresetSwitcher::Event;
  if (event == Event::AutopilotTookOver) {
    emit Told(tr("The autopilot is on, so presets no longer change automatically."));
  } else if (event == Event::Interrupted) {
    emit Told(tr("The look was changed, so the smooth change has ended."));
  } else if (event == Event::WantsPreset) {
    emit WantsPreset();
  }
  const bool switching = switcher_.IsSwitching();
  if (std::exchange(wasSwitching_, switching) != switching) emit SwitchingChanged(switching);
}

void LiveSettings::BlendTo(const Settings& target, double seconds) {
  const bool autopilot = present_ && present_->autopilot != 0;
  switcher_.BlendTo(target, seconds);
  timer_.start(0);
  if (autopilot) emit Told(tr("A preset was chosen, so the autopilot is off."));
}

void LiveSettings::EndBlend() {
  Flush();
  switcher_.EndBlend();
}

void LiveSettings::StartSwitching(double interval) {
  const bool autopilot = present_ && present_->autopilot != 0;
  switcher_.Start(interval);
  Flush();
  if (autopilot) emit Told(tr("Presets change automatically, so the autopilot is off."));
}

void LiveSettings::StopSwitching() {
  switcher_.Stop();
  Flush();
}

} // namespace halvenor
