// The plug-in as the window knows it: where it draws, and what it asks of the window.
#pragma once

#include "desktop/drawing_area.h"
#include "host/plugin_host.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <filesystem>
#include <memory>
#include <string>

namespace halvenor {

/// One plug-in in one drawing area. It is shown whenever the area has a port and hidden before the
/// port goes.
class Visualizer final : public QObject, private HostServices {
  Q_OBJECT

public:
  /// Loads and starts the plug-in at `plugin`, which keeps what it stores in `store`. On failure
  /// returns null and leaves one line in `error`.
  static std::unique_ptr<Visualizer> Create(const std::filesystem::path& plugin,
                                            std::unique_ptr<PreferenceStore> store,
                                            std::string& error);
  ~Visualizer() override;

  /// For every message that has nothing to do with the drawing area.
  PluginHost& Plugin() { return *plugin_; }
  /// What the plug-in would like in full screen; zeros until it said so.
  [[nodiscard]] const FullScreenOptions& WantedFullScreen() const { return wantedFullScreen_; }

  /// From now on draws into `area`, which must outlive this object or `End`.
  void DrawInto(DrawingArea& area);
  /// Whether the area covers the screen now.
  void TellFullScreen(bool fullScreen);

  /// Hides the picture and ends the activation; nothing is shown afterwards. May be repeated.
  void End();

signals:
  /// The plug-in asks the window to enter or to leave full screen, mostly from inside a message.
  void FullScreenWanted(bool fullScreen);
  /// The picture is there.
  void Shown();
  /// There will be no picture.
  void ShowFailed();

private:
  explicit Visualizer(std::unique_ptr<PreferenceStore> store);

  PreferenceStore& Preferences() override { return *store_; }
  Status SetFullScreen(bool fullScreen) override;
  Status SetFullScreenOptions(const FullScreenOptions& options) override;

  void Show();
  void Hide();
  void SetWindow();

  std::unique_ptr<PreferenceStore> store_;
  std::unique_ptr<PluginHost> plugin_;
  DrawingArea* area_ = nullptr;
  FullScreenOptions wantedFullScreen_;
  std::uint32_t windowOptions_ = 0;
  QTimer settle_; ///< until the plug-in hears of the area's new size
};

} // namespace halvenor
