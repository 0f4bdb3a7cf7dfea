// Listening to the computer: the source that was chosen, and what became of it, in words.
#pragma once

#include "host/capture_source.h"
#include "host/sound_server.h"

#include <QtCore/QObject>
#include <QtCore/QString>

class QSettings;

namespace halvenor {

/// A `CaptureSource` whose chosen source is kept in the settings of this machine.
class Listening final : public QObject, private CaptureSource::Listener {
  Q_OBJECT

public:
  /// Both must outlive this object.
  Listening(SoundServer& server, QSettings& settings);

  /// What was chosen last on this machine; empty: the default output.
  [[nodiscard]] QString ChosenSource() const;
  void Begin(const QString& source);
  void End();
  void Poll() { capture_.Poll(); }
  void SetOffset(int milliseconds) { capture_.SetOffset(milliseconds); }

  [[nodiscard]] CaptureSource::State State() const { return capture_.CurrentState(); }
  /// For people; what it was when there is none now.
  [[nodiscard]] const QString& SourceDescription() const { return description_; }
  /// `SoundSource::name` of what is listened to; empty: none.
  [[nodiscard]] std::string SourceName() const { return capture_.Current().name; }
  /// Why there is no sound; empty while there is some.
  [[nodiscard]] QString StateWords() const;

signals:
  void Changed();
  void RecordDue(const RenderVisualData& record);
  void LevelChanged(double level);
  void Reported(const QString& line);

private:
  void StateChanged(CaptureSource::State state, const std::string& source) override;
  void Record(const RenderVisualData& record) override;
  void Level(float level) override;
  void ChosenSourceGone(const std::string& name) override;
  void ChosenSourceBack(const std::string& name) override;

  QSettings& settings_;
  CaptureSource capture_;
  QString description_;
};

} // namespace halvenor
