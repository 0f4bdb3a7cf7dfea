#include "desktop/playback/listening.h"

#include "desktop/shown_text.h"

namespace halvenor {

Listening::Listening(SoundServer& server) : capture_(server, *this) {}

void Listening::Begin(const QString& source) {
  capture_.Open(source.toStdString());
}

void Listening::End() {
  capture_.Close();
}

QString Listening::StateText() const {
  switch (capture_.CurrentState()) {
  case CaptureSource::State::Connecting:
    return tr("Connecting");
  case CaptureSource::State::NoSignal:
    return tr("No signal");
  case CaptureSource::State::Muted:
    return tr("The output is muted");
  case CaptureSource::State::DeviceGone:
    return tr("The device is gone, waiting");
  case CaptureSource::State::ServerGone:
    return tr("No sound server, waiting");
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
  emit Reported(tr("The source %1 is not available. Listening to the default output until it is.")
                    .arg(ShownLine(name)));
}

void Listening::ChosenSourceBack(const std::string&) {
  emit SourceBack();
  emit Changed();
}

} // namespace halvenor
