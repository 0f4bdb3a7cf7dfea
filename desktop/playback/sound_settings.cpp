#include "desktop/playback/sound_settings.h"

#include "audio/analyzer.h"

#include <QtCore/QSettings>
#include <QtCore/QSysInfo>

#include <algorithm>

namespace halvenor {
namespace {

const QString kVolumeKey = QStringLiteral("sound/volume");
const QString kMutedKey = QStringLiteral("sound/muted");

double ReadNumber(QSettings& settings, const QString& key, double least, double most,
                  double fallback) {
  if (!settings.contains(key)) return fallback;
  bool isNumber = false;
  const double number = settings.value(key).toDouble(&isNumber);
  if (isNumber && number >= least && number <= most) return number; // NaN is neither
  settings.remove(key);
  return fallback;
}

QString DelayKey(const SoundOutput& output) {
  return QStringLiteral("offsets/") +
         QString::fromLatin1(QByteArray::fromStdString(output.name).toPercentEncoding());
}

// Machines that share a home folder have an entry each: their devices differ.
QString SourceKey() {
  QByteArray machine = QSysInfo::machineUniqueId();
  if (machine.isEmpty()) machine = QSysInfo::machineHostName().toUtf8();
  return QStringLiteral("source/") + QString::fromLatin1(machine.toPercentEncoding());
}

} // namespace

double SoundSettings::Volume() const {
  return ReadNumber(settings_, kVolumeKey, 0, 1, 1);
}

void SoundSettings::SetVolume(double volume) {
  settings_.setValue(kVolumeKey, volume);
}

bool SoundSettings::IsMuted() const {
  return settings_.value(kMutedKey, false).toBool();
}

void SoundSettings::SetMuted(bool muted) {
  settings_.setValue(kMutedKey, muted);
}

int SoundSettings::Delay(const SoundOutput& output) const {
  return static_cast<int>(ReadNumber(settings_, DelayKey(output), -kMostOffset, kMostOffset, 0));
}

void SoundSettings::SetDelay(const SoundOutput& output, int milliseconds) {
  settings_.setValue(DelayKey(output), std::clamp(milliseconds, -kMostOffset, kMostOffset));
}

QString SoundSettings::Source() const {
  return settings_.value(SourceKey()).toString();
}

void SoundSettings::SetSource(const QString& name) {
  if (name != Source()) settings_.setValue(SourceKey(), name);
}

} // namespace halvenor
