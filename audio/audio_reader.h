// Audio files for offline hosts: decoded and analyzed as fast as they are asked for.
#pragma once

#include "audio/analyzer.h"
#include "audio/media_tags.h"
#include "audio/promised_length.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace halvenor {

/// The stretch of a medium to read, and how to give up.
struct AudioReaderOptions {
  double startSeconds = 0;               ///< exact to the sample; record 0 begins here
  std::optional<double> durationSeconds; ///< none: to the end; a longer one ends with the sound
  /// Asked a few times a second while waiting for a medium; true makes the call that waits fail.
  std::function<bool()> canceled;
};

/// Uses threads of its own for decoding, a bounded distance ahead; call it from one thread.
///
/// Failures are one line of UTF-8 that names the medium, without a line end: it is missing, a
/// folder, empty, unreadable, not a medium, without sound, needs a decoder that is not installed,
/// shorter than `startSeconds`, or so damaged that it cannot be decoded. Of a medium that merely
/// has less sound than it promises, `Missing` tells it.
class AudioReader {
public:
  /// Opens `medium`, a path or a URI, and waits until its tags and first sound are there. On
  /// failure returns null and leaves one line in `error`.
  static std::unique_ptr<AudioReader> Open(const std::string& medium,
                                           const AudioReaderOptions& options, std::string& error);
  ~AudioReader();
  AudioReader(const AudioReader&) = delete;
  AudioReader& operator=(const AudioReader&) = delete;

  [[nodiscard]] const MediaTags& Tags() const;

  /// Length of the stretch in seconds, as far as the medium tells before it is decoded: exact or a
  /// good guess, good for a progress bar; none for endless streams.
  [[nodiscard]] std::optional<double> Length() const;

  /// The next record with its sound, valid until the next call; null after the last one or on
  /// failure. A damaged medium yields the records before the damage first.
  const AnalyzedSound* Next();

  /// After `Next` returned null: empty at the regular end, else the failure.
  [[nodiscard]] const std::string& Error() const;

  /// After `Next` returned null at the end of the medium: how much less sound it had than it
  /// promises; none if hardly less (none at all for FLAC and M4A, whose headers are exact), if it
  /// promises nothing, and before. `DescribeMissingSound` has the words.
  [[nodiscard]] std::optional<MissingSound> Missing() const;

private:
  struct Decoder;
  explicit AudioReader(std::unique_ptr<Decoder> decoder);

  std::unique_ptr<Decoder> decoder_;
};

} // namespace halvenor
