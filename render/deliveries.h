// The audio records of a run, and the sound that goes with them.
#pragma once

#include "audio/audio_reader.h"
#include "protocol/render_visual_data.h"
#include "render/options.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace halvenor::render {

/// One record, delivered at `kNanosecondsPerRecord` times its place.
struct Delivery {
  RenderVisualData record;
  std::uint64_t end; ///< nanoseconds; frames before this time are drawn before the next delivery
  std::span<const float> sound; ///< see `AnalyzedSound`; empty when there is none (any more)
};

/// Reads as it goes: memory does not grow with the length. One thread.
class Deliveries {
public:
  virtual ~Deliveries() = default;

  /// From the analyzed sound of INPUT, or from a file of records. On failure returns null and
  /// leaves one line in `error`.
  static std::unique_ptr<Deliveries> Open(const Options& options, std::string& error);

  /// What INPUT says of itself; null without one.
  [[nodiscard]] const MediaTags* Tags() const;
  /// Seconds that will be shown, as far as that is known.
  [[nodiscard]] virtual std::optional<double> Length() const = 0;
  /// The next delivery, valid until the next call; null at the end or on failure.
  virtual const Delivery* Next() = 0;
  /// One line after a failure, else empty.
  [[nodiscard]] virtual std::string Error() const = 0;
  /// At the end one line when INPUT has much less sound than it promises, else empty.
  [[nodiscard]] std::string Warning() const;

protected:
  /// What INPUT's sound comes from; null without one.
  [[nodiscard]] virtual const AudioReader* Sound() const = 0;

private:
  std::string input_; ///< for messages
};

} // namespace halvenor::render
