#include "render/deliveries.h"

#include "audio/audio_reader.h"
#include "files/file_bytes.h"
#include "render/stop_signals.h"
#include "render/time_line.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <limits>
#include <utility>

namespace halvenor::render {
namespace {

constexpr std::int64_t kRecordBytes = sizeof(RenderVisualData);
constexpr double kSecondsPerRecord = kDeliveryMilliseconds / 1000.0;

std::uint64_t Nanoseconds(double seconds) {
  return static_cast<std::uint64_t>(std::llround(seconds * 1e9));
}

// When the run ends at the latest.
std::uint64_t Limit(const Options& options) {
  return options.durationSeconds ? Nanoseconds(*options.durationSeconds)
                                 : std::numeric_limits<std::uint64_t>::max();
}

std::unique_ptr<AudioReader> OpenSound(const std::string& input, double start,
                                       std::optional<double> duration, std::string& error) {
  return AudioReader::Open(input,
                           {.startSeconds = start,
                            .durationSeconds = duration,
                            .canceled = [] { return StopSignals::HaveArrived(); }},
                           error);
}

// The records of INPUT's own sound.
class AnalyzedDeliveries final : public Deliveries {
public:
  AnalyzedDeliveries(std::unique_ptr<AudioReader> reader, std::uint64_t limit)
      : reader_(std::move(reader)), limit_(limit) {}

  [[nodiscard]] std::optional<double> Length() const override { return reader_->Length(); }
  [[nodiscard]] std::string Error() const override { return reader_->Error(); }

  const Delivery* Next() override {
    const AnalyzedSound* const next = reader_->Next();
    if (!next) return nullptr;
    const std::uint64_t frames = next->sound.size() / 2;
    delivery_.record = next->record;
    delivery_.sound = next->sound;
    delivery_.end = std::min(next->index * kNanosecondsPerRecord +
                                 frames * kNanosecondsPerSecond / kAnalysisRate,
                             limit_);
    return &delivery_;
  }

private:
  [[nodiscard]] const AudioReader* Sound() const override { return reader_.get(); }

  const std::unique_ptr<AudioReader> reader_;
  const std::uint64_t limit_;
  Delivery delivery_{};
};

// Records from a file; INPUT, when there is one, gives the sound.
class StoredDeliveries final : public Deliveries {
public:
  static std::unique_ptr<Deliveries> Open(const Options& options, std::string& error);

  [[nodiscard]] std::optional<double> Length() const override {
    return static_cast<double>(end_) / kNanosecondsPerSecond;
  }
  [[nodiscard]] std::string Error() const override { return error_; }
  const Delivery* Next() override;

private:
  [[nodiscard]] const AudioReader* Sound() const override { return sound_.get(); }

  std::string name_;
  OpenedFile file_;
  std::uint64_t first_ = 0; ///< the first record in the file that is delivered
  std::unique_ptr<AudioReader> sound_;
  bool soundEnded_ = false;
  std::uint64_t end_ = 0; ///< nanoseconds
  std::uint64_t index_ = 0;
  Delivery delivery_{};
  std::string error_;
};

std::unique_ptr<Deliveries> StoredDeliveries::Open(const Options& options, std::string& error) {
  const std::string& name = options.recordsFile;
  const auto fail = [&](const std::string& reason) {
    error = "cannot use the records " + name + ": " + reason;
    return nullptr;
  };
  auto self = std::make_unique<StoredDeliveries>();
  self->name_ = name;
  self->file_ = OpenRegularFile(AT_FDCWD, name, Links::Follow, kAnySize);
  if (!self->file_) return fail(self->file_.Reason());
  const std::uint64_t size = self->file_.size;
  if (size == 0 || size % sizeof(RenderVisualData) != 0)
    return fail("its " + std::to_string(size) + " bytes are not whole records of " +
                std::to_string(sizeof(RenderVisualData)) + " bytes");

  // The records stand for the sound from its beginning, so the start is one of theirs.
  const std::uint64_t count = size / sizeof(RenderVisualData);
  const std::uint64_t first = RecordAt(Nanoseconds(options.startSeconds));
  if (first >= count) return fail("they end before --start");
  self->first_ = first;
  self->end_ = std::min((count - first) * kNanosecondsPerRecord, Limit(options));
  if (options.input.empty()) return self;
  self->sound_ = OpenSound(options.input, static_cast<double>(first) * kSecondsPerRecord,
                           self->Length(), error);
  return self->sound_ ? std::move(self) : nullptr;
}

const Delivery* StoredDeliveries::Next() {
  const std::uint64_t begin = index_ * kNanosecondsPerRecord;
  if (begin >= end_) return nullptr;
  const std::uint64_t position = (first_ + index_++) * sizeof delivery_.record;
  if (ReadAt(file_.descriptor.Get(), position,
             std::as_writable_bytes(std::span(&delivery_.record, 1))) < kRecordBytes) {
    error_ = "cannot read the records " + name_;
    return nullptr;
  }
  delivery_.end = std::min(begin + kNanosecondsPerRecord, end_);
  delivery_.sound = {};
  if (sound_ && !soundEnded_) {
    if (const AnalyzedSound* const next = sound_->Next()) {
      delivery_.sound = next->sound;
    } else {
      soundEnded_ = true;
      error_ = sound_->Error();
      if (!error_.empty()) return nullptr;
    }
  }
  return &delivery_;
}

} // namespace

const MediaTags* Deliveries::Tags() const {
  return Sound() ? &Sound()->Tags() : nullptr;
}

std::string Deliveries::Warning() const {
  const std::optional<MissingSound> missing = Sound() ? Sound()->Missing() : std::nullopt;
  return missing ? DescribeMissingSound(input_, *missing) : "";
}

std::unique_ptr<Deliveries> Deliveries::Open(const Options& options, std::string& error) {
  std::unique_ptr<Deliveries> deliveries;
  if (!options.recordsFile.empty()) {
    deliveries = StoredDeliveries::Open(options, error);
  } else if (auto reader =
                 OpenSound(options.input, options.startSeconds, options.durationSeconds, error)) {
    deliveries = std::make_unique<AnalyzedDeliveries>(std::move(reader), Limit(options));
  }
  if (deliveries) deliveries->input_ = options.input;
  return deliveries;
}

} // namespace halvenor::render
