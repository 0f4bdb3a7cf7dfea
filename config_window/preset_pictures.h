// The pictures of presets: those that came with them, and those rendered here.
#pragma once

#include "presets/preset_library.h"

#include <QtCore/QCache>
#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QSet>
#include <QtCore/QStringList>
#include <QtGui/QPixmap>

#include <functional>
#include <span>
#include <vector>

namespace halvenor {

/// Reads pictures when somebody looks at them. A look that has none yet is rendered by a program of
/// ours, one at a time and at a low priority, and kept in the user's cache folder under a name
/// made of the look. Where the program is missing or fails, there is no picture.
class PresetPictures final : public QObject {
  Q_OBJECT

public:
  /// The shape of every picture.
  static constexpr QSize kSize{240, 135};

  /// `isWanted` tells whether the picture of the preset with this id is still looked at.
  explicit PresetPictures(std::function<bool(const std::string& id)> isWanted);
  ~PresetPictures() override;

  /// The picture of `preset`, or a null one: then `Ready` tells when it is there.
  QPixmap Find(const Preset& preset);
  /// Nobody looks any more: nothing else is rendered, and what belongs to none of `presets` leaves
  /// the cache folder.
  void Stop(std::span<const Preset> presets);

signals:
  void Ready(const std::string& id);

private:
  struct Wish {
    std::string id;
    Settings look;
    QString file;
  };

  QPixmap Read(const QString& file);
  void RenderNext();
  void OnRendered();

  std::function<bool(const std::string&)> isWanted_;
  QString folder_;
  QCache<QString, QPixmap> read_;
  QSet<QString> failed_;
  std::vector<Wish> wishes_; ///< the last is the next
  Wish rendering_;
  QProcess render_;
};

} // namespace halvenor
