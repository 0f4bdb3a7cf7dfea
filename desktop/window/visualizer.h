// The plug-in as the window uses it: where it draws, and what it asks of the window.
#pragma once

#include "desktop/window/drawing_area.h"
#include "host/plugin_host.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <filesystem>
#include <memory>
#include <string>

namespace halvenor {

/// One plug-in in one drawing area. It is shown whenever the area has a port, and hidden before the
/// port vanishes.
class Visualizer final : public QObject, private HostServices {
  Q_OBJECT

public:
  /// Loads and starts the plug-in at `plugin`, which keeps what it stores in `store`. On failure
  /// returns null and leaves one line in `error`.
  static std::unique_ptr<Visualizer> Create(const std::filesystem::path& plugin,
                                            std::unique_ptr<PreferenceStore> store,
                                            std::string& error);
  ~Visualizer() override;

  /// For all messages that do not concern the drawing area.
  PluginHost& Plugin() { return *plugin_; }
  /// What the plug-in wants in full screen; zeros until it has asked.
  [[nodiscard]] const FullScreenOptions& WantedFullScreen() const { return wantedFullScreen_; }

  /// From now on draws into `area`, which must outlive this object or `End`.
  void DrawInto(DrawingArea& area);
  /// Tells the plug-in whether the area covers the screen.
  void TellFullScreen(bool fullScreen);
  /// While the area cannot be seen, as at the start it can, only trails are drawn.
  void SetSeen(bool seen);

  /// Hides the picture and ends the activation; nothing is shown afterwards. May be repeated.
  void End();

signals:
  /// The plug-in asks the window to enter or to leave full screen, mostly from inside a message.
  void FullScreenWanted(bool fullScreen);
  /// The picture is shown.
  void Shown();
  /// There will be no picture.
  void ShowFailed();
  /// One line for a person: what the plug-in stores cannot be read or written. From the event loop.
  void Reported(const QString& line);

private:
  explicit Visualizer(std::unique_ptr<PreferenceStore> store);

  PreferenceStore& Preferences() override { return *store_; }
  Status SetFullScreen(bool fullScreen) override;
  Status SetFullScreenOptions(const FullScreenOptions& options) override;

  void Show();
  void Hide();
  void SetWindow();
  void ReportStore(const QString& line);

  std::unique_ptr<PreferenceStore> store_;
  std::unique_ptr<PluginHost> plugin_;
  DrawingArea* area_ = nullptr;
  FullScreenOptions wantedFullScreen_;
  std::uint32_t windowOptions_ = 0;
  QTimer settle_; ///< until the plug-in is told the area's new size
};

} // namespace halvenor
