// What a person chose about the sound, kept from run to run.
#pragma once

#include "audio/sound_server.h"

#include <QtCore/QString>

class QSettings;

namespace halvenor {

/// Reads and writes the choices in the program's settings. What is stored may be anything: a value
/// that is no number or out of range counts as not stored, and is removed.
class SoundSettings {
public:
  /// `settings` must outlive this object.
  explicit SoundSettings(QSettings& settings) : settings_(settings) {}

  /// 0 to 1 as people hear it; 1 at first.
  [[nodiscard]] double Volume() const;
  void SetVolume(double volume);
  [[nodiscard]] bool IsMuted() const;
  void SetMuted(bool muted);
  /// How much later than the sound server reports the sound is heard, milliseconds up to
  /// `kMostOffset` (audio/analyzer.h) either way; 0 at first. For each output device.
  [[nodiscard]] int Delay(const SoundOutput& output) const;
  void SetDelay(const SoundOutput& output, int milliseconds);
  /// `SoundSource::name`, for each machine; empty: follow the default output.
  [[nodiscard]] QString Source() const;
  void SetSource(const QString& name);

private:
  QSettings& settings_;
};

} // namespace halvenor
