#include "desktop/listening.h"

#include "desktop/shown_text.h"

#include <QtCore/QSettings>
#include <QtCore/QSysInfo>

namespace halvenor {
namespace {

// A home that several machines share has an entry for each: their devices differ.
QString SourceKey() {
  QByteArray machine = QSysInfo::machineUniqueId();
  if (machine.isEmpty()) machine = QSysInfo::machineHostName().toUtf8();
  return QStringLiteral("source/") + QString::fromLatin1(machine.toPercentEncoding());
}

} // namespace

Listening::Listening(SoundServer& server, QSettings& settings)
    : settings_(settings), capture_(server, *this) {}

QString Listening::ChosenSource() const {
  return settings_.value(SourceKey()).toString();
}

void Listening::Begin(const QString& source) {
  if (source != ChosenSource()) settings_.setValue(SourceKey(), source);
  capture_.Open(source.toStdString());
}

void Listening::End() {
  capture_.Close();
}

QString Listening::StateWords() const {
  switch (capture_.CurrentState()) {
  case CaptureSource::State::Connecting:
    return tr("connecting");
  case CaptureSource::State::NoSignal:
    return tr("no signal");
  case CaptureSource::State::DeviceGone:
    return tr("device gone, waiting");
  case CaptureSource::State::ServerGone:
    return tr("no sound server, waiting");
  case CaptureSource::State::Closed:
  case CaptureSource::State::Listening:
    break;
  }
  return {};
}

void Listening::StateChanged(CaptureSource::State, const std::string& source) {
  description_ = ShownLine(source);
  emit Changed();
}

void Listening::Record(const RenderVisualData& record) {
  emit RecordDue(record);
}

void Listening::Level(float level) {
  emit LevelChanged(static_cast<double>(level));
}

void Listening::ChosenSourceGone(const std::string& name) {
  emit Reported(tr("the source %1 is not there: listening to the default output until it is")
                    .arg(QString::fromStdString(name)));
}

void Listening::ChosenSourceBack(const std::string&) {
  emit Changed();
}

} // namespace halvenor
