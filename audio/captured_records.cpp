#include "audio/captured_records.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace halvenor {

namespace {

using namespace std::chrono_literals;

constexpr auto kStaleRecord = 200ms;   // records that are later than this are dropped
constexpr std::size_t kMostKept = 128; // records, more than six seconds

// Gain is applied, and peaks are found, in pieces of 10 ms.
constexpr std::size_t kPiece = 441;
static_assert(kFramesPerRecord % kPiece == 0);

HeardClock::Clock::duration Length(std::uint64_t frames) {
  return std::chrono::duration_cast<HeardClock::Clock::duration>(
      std::chrono::duration<double>(static_cast<double>(frames) / kAnalysisRate));
}

} // namespace

void HeardClock::Observe(std::uint64_t frame, Clock::time_point heard) {
  constexpr auto kLargest = 40ms;
  constexpr int kJumpAfter = 8;
  const Clock::time_point origin = heard - Length(frame);
  const auto difference = origin - origin_.value_or(origin);
  jumping_ = std::chrono::abs(difference) > kLargest ? jumping_ + 1 : 0;
  if (!origin_ || jumping_ > kJumpAfter) {
    origin_ = origin;
  } else if (jumping_ == 0) {
    *origin_ += difference / 16;
  }
}

HeardClock::Clock::time_point HeardClock::Heard(std::uint64_t frame) const {
  return origin_.value_or(Clock::time_point{}) + Length(frame);
}

void CapturedRecords::Restart() {
  analyzer_.Reset();
  clock_.Reset();
  kept_.clear();
  frames_ = 0;
  peak_ = 0;
}

void CapturedRecords::Take(std::span<const float> sound) {
  while (sound.size() >= 2) {
    const std::size_t room = kPiece - frames_ % kPiece;
    const std::size_t count = std::min(room, sound.size() / 2);
    TakePiece(sound.first(2 * count));
    sound = sound.subspan(2 * count);
  }
}

void CapturedRecords::TakeSilence(std::size_t count) {
  static constexpr std::array<float, 2 * kFramesPerRecord> kSilence{};
  for (; count > 0; count -= std::min(count, kSilence.size()))
    Take(std::span(kSilence).first(std::min(count, kSilence.size())));
}

void CapturedRecords::TakePiece(std::span<const float> piece) {
  std::array<float, 2 * kPiece> lifted{};
  std::ranges::copy(piece, lifted.begin());
  for (float& value : lifted) {
    if (!std::isfinite(value)) value = 0;
    peak_ = std::max(peak_, std::fabs(value));
  }
  const std::span<float> now = std::span(lifted).first(piece.size());
  frames_ += piece.size() / 2;
  gain_.Apply(now);
  analyzer_.Push(now);
}

void CapturedRecords::Keep(const AnalyzedSound& analyzed) {
  gain_.Observe(analyzed.record);
  if (kept_.size() == kMostKept) kept_.pop_front();
  kept_.push_back({analyzed.index * kFramesPerRecord, std::exchange(peak_, 0.0F), analyzed.record});
}

std::optional<CapturedRecords::Captured> CapturedRecords::Next(Clock::time_point now,
                                                               Clock::duration offset) {
  while (!kept_.empty()) {
    const Clock::time_point due = clock_.Heard(kept_.front().frame) + offset;
    if (due > now) break;
    const Captured next = kept_.front();
    kept_.pop_front();
    if (due + kRecordTime + kStaleRecord >= now) return next;
  }
  return std::nullopt;
}

} // namespace halvenor
