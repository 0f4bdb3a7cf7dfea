#include "presets/preset_switcher.h"

#include "presets/look.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr double kShortestInterval = 0.1; // seconds

double UsableInterval(double seconds) {
  return std::isnan(seconds) ? kShortestInterval : std::max(seconds, kShortestInterval);
}

// Eases in and out.
double Eased(double part) {
  return part * part * (3 - 2 * part);
}

} // namespace

void PresetSwitcher::Start(double interval) {
  interval_ = UsableInterval(interval);
  lastTurn_.reset();
  endAutopilot_ = true;
}

void PresetSwitcher::Stop() {
  interval_.reset();
  blend_.reset();
  endAutopilot_ = false;
}

bool PresetSwitcher::IsSwitching() const {
  return interval_.has_value();
}

void PresetSwitcher::SetInterval(double interval) {
  if (interval_) interval_ = UsableInterval(interval);
}

void PresetSwitcher::BlendTo(const Settings& target, double seconds) {
  blend_ = Blend{target, seconds, std::nullopt, {}, {}};
  lastTurn_.reset();
  endAutopilot_ = true;
}

bool PresetSwitcher::IsBlending() const {
  return blend_.has_value();
}

void PresetSwitcher::EndBlend() {
  blend_.reset();
}

PresetSwitcher::Step PresetSwitcher::Advance(const Settings& present, double now) {
  if (Event event; YieldsTo(present, event)) return {std::nullopt, event};

  Settings block = present;
  if (endAutopilot_) block.autopilot = 0;
  endAutopilot_ = false;
  if (blend_) AdvanceBlend(block, now);

  Step step;
  if (!SameLook(block, present) || block.autopilot != present.autopilot) step.write = block;
  if (IsTurn(now)) step.event = Event::WantsPreset;
  return step;
}

// Whether the user, a key or the autopilot has changed the look since the last step.
bool PresetSwitcher::YieldsTo(const Settings& present, Event& event) {
  const bool busy = blend_ || interval_;
  if (busy && present.autopilot != 0 && !endAutopilot_) {
    event = interval_ ? Event::AutopilotTookOver : Event::Interrupted;
    Stop();
    return true;
  }
  if (blend_ && blend_->began && !SameLook(present, blend_->written)) {
    event = Event::Interrupted;
    blend_.reset();
    return true;
  }
  return false;
}

void PresetSwitcher::AdvanceBlend(Settings& block, double now) {
  if (!blend_->began) {
    blend_->began = now;
    blend_->from = block;
  }
  const double passed = now - *blend_->began;
  const double part = passed < blend_->seconds ? std::max(passed / blend_->seconds, 0.0) : 1.0;
  CopyLook(BlendLooks(blend_->from, blend_->target, Eased(part)), block);
  blend_->written = block;
  if (part >= 1) blend_.reset();
}

bool PresetSwitcher::IsTurn(double now) {
  if (!interval_) return false;
  const bool isTurn = lastTurn_ && now - *lastTurn_ >= *interval_;
  if (isTurn || !lastTurn_ || now < *lastTurn_) lastTurn_ = now;
  return isTurn;
}

} // namespace halvenor
