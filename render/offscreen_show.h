// A plug-in showing into memory, on a clock that is stepped from frame to frame.
#pragma once

#include "host/log_capture.h"
#include "host/plugin_host.h"
#include "host/preference_store.h"
#include "host/track_records.h"
#include "platform/ports.h"
#include "render/options.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace halvenor::render {

/// One thread. Whatever fails says why in one line; then the show is only good for being destroyed,
/// which hides and cleans up.
class OffscreenShow final : private HostServices {
public:
  /// Loads the plug-in and shows it, one frame interval before time 0.
  static std::unique_ptr<OffscreenShow> Open(const Options& options, std::string& error);
  ~OffscreenShow() override;

  /// A track begins to play; UTF-8.
  void Play(const std::string& title, const std::string& artist);

  /// Delivers one record, at its place in the order of records.
  void Deliver(const RenderVisualData& record);

  /// Presses a key (Mac OS Roman).
  void Press(char key);

  /// Steps to `time` (nanoseconds) and has the frame drawn then put into `picture`, which has room
  /// for all of its pixels.
  bool Draw(std::uint64_t time, std::span<std::uint8_t> picture, std::string& error);

  /// Steps to `time` with a frame that nobody sees: `use` says what is drawn all the same.
  bool DrawUnseen(std::uint64_t time, HalvenorFrameUse use, std::string& error);

  /// The music has ended.
  void Stop();

private:
  explicit OffscreenShow(const Options& options);
  bool Start(const Options& options, std::string& error);
  void LoadSettings(const Options& options);
  std::string Because();

  PreferenceStore& Preferences() override { return *preferences_; }
  Status SetFullScreen(bool) override { return status::kOk; }
  Status SetFullScreenOptions(const FullScreenOptions&) override { return status::kOk; }

  static void TakeFrame(void* refCon, const HalvenorFrame* frame);

  LogCapture log_;
  std::unique_ptr<PreferenceStore> preferences_;
  HalvenorPort port_{};
  std::unique_ptr<PluginHost> plugin_;
  std::uint32_t deliveries_ = 0;

  /// Set by this thread while no frame is being drawn, used by the one that draws: the steps of
  /// the clock lie in between.
  std::span<std::uint8_t> picture_;
  bool taken_ = false;
};

} // namespace halvenor::render
