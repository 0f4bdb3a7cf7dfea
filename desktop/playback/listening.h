// Listening to what the computer plays.
#pragma once

#include "audio/capture_source.h"
#include "audio/sound_server.h"

#include <QtCore/QObject>
#include <QtCore/QString>

namespace halvenor {

/// A `CaptureSource` with signals, and its state as text.
class Listening final : public QObject, private CaptureSource::Listener {
  Q_OBJECT

public:
  /// `server` must outlive this object.
  explicit Listening(SoundServer& server);

  /// `SoundSource::name`; empty: follows the default output.
  void Begin(const QString& source);
  void End();
  void Poll() { capture_.Poll(); }
  void SetOffset(int milliseconds) { capture_.SetOffset(milliseconds); }

  [[nodiscard]] CaptureSource::State State() const { return capture_.CurrentState(); }
  /// For people; of the last source while there is none.
  [[nodiscard]] const QString& SourceDescription() const { return description_; }
  /// `SoundSource::name` of what is listened to; empty: none.
  [[nodiscard]] std::string SourceName() const { return capture_.Current().name; }
  /// Why there is no sound; empty while there is some.
  [[nodiscard]] QString StateText() const;

signals:
  void Changed();
  void RecordDue(const RenderVisualData& record);
  void LevelChanged(double level); ///< `MeterLevel`
  void Reported(const QString& line);
  /// The chosen source, whose absence was reported, is listened to again.
  void SourceBack();

private:
  void StateChanged(CaptureSource::State state, const std::string& source) override;
  void Record(const RenderVisualData& record) override;
  void Level(float level) override;
  void ChosenSourceGone(const std::string& name) override;
  void ChosenSourceBack(const std::string& name) override;

  CaptureSource capture_;
  QString description_;
};

} // namespace halvenor
