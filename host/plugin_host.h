// One plug-in and the host's side of its protocol: registration, messages, requests.
#pragma once

#include "host/plugin_module.h"
#include "host/preference_store.h"
#include "platform/clock.h"
#include "platform/ports.h"
#include "protocol/records.h"

#include <cstdint>
#include <memory>
#include <string>

namespace halvenor {

/// The status of a request whose record is malformed.
inline constexpr Status kBadRequestRecord = -50;

/// The full-screen mode that a plug-in would like; depths in bits, sizes in pixels.
struct FullScreenOptions {
  int minBitDepth = 0;
  int maxBitDepth = 0;
  int preferredBitDepth = 0;
  int desiredWidth = 0;
  int desiredHeight = 0;
};

/// What a host does for its plug-in. Called on the host's thread, mostly from inside a message; an
/// answer may send further messages to the plug-in before it returns.
class HostServices {
public:
  virtual ~HostServices() = default;
  /// Where the plug-in's block is kept; must outlive the plug-in's host.
  virtual PreferenceStore& Preferences() = 0;
  virtual Status SetFullScreen(bool fullScreen) = 0;
  virtual Status SetFullScreenOptions(const FullScreenOptions& options) = 0;
};

/// What a plug-in registered.
struct PluginRegistration {
  std::string name; ///< UTF-8
  FourCharCode creator = 0;
  std::uint32_t options = 0; ///< `kWantsIdleMessages`, `kWantsConfigure`
  std::uint32_t millisecondsBetweenData = 0;
  std::uint32_t waveformChannels = 0;
  std::uint32_t spectrumChannels = 0;
  int minWidth = 0; ///< window limits, pixels
  int minHeight = 0;
  int maxWidth = 0;
  int maxHeight = 0;
};

/// Sends messages to one plug-in and answers its requests, all on one thread, the host's. Make one
/// per process and plug-in, since a plug-in registers once; `Init` and `Cleanup` may alternate.
///
/// Messages return the plug-in's status. Those sent outside `Init`..`Cleanup` do not reach the
/// plug-in and return `status::kNotHandled`.
class PluginHost {
public:
  /// Has the plug-in register itself. `services` must outlive the result. On failure returns null
  /// and leaves one line in `error`.
  static std::unique_ptr<PluginHost> Create(const PluginModule& module, HostServices& services,
                                            std::string& error);

  /// Hides and cleans up what is still shown and initialized.
  ~PluginHost();
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;

  [[nodiscard]] const PluginRegistration& Registration() const { return registration_; }

  /// Begins an activation. A status other than 0 is a warning if the plug-in is set up anyway
  /// (`IsInitialized`); otherwise there is no activation.
  Status Init();
  [[nodiscard]] bool IsInitialized() const { return initialized_; }
  /// Ends the activation, hiding first when shown. Does nothing without one.
  Status Cleanup();

  /// Shows the picture in `rect` of `port`, which stays alive until `Hide` has returned. With a
  /// status other than 0 nothing is shown.
  Status Show(GrafPtr port, const Rect& rect, std::uint32_t options);
  Status Hide();
  [[nodiscard]] bool IsShown() const { return shown_; }
  /// What frames are for from now on, also of ports that are shown later.
  void SetFrameUse(HalvenorFrameUse use);
  /// On a stepped clock: has the plug-in draw its next frame at `time` (see clock.h), for `use`.
  clock::StepResult Step(std::uint64_t time, HalvenorFrameUse use = kHalvenorFrameSeen);
  /// Port, rectangle or options have changed.
  Status SetWindow(GrafPtr port, const Rect& rect, std::uint32_t options);

  /// Delivers the sound of the last 50 ms; null: there is none. `timeStamp` counts the deliveries.
  Status RenderData(RenderVisualData* record, std::uint32_t timeStamp);

  /// Either record may be null.
  Status Play(TrackInfo* track, StreamInfo* stream);
  Status ChangeTrack(TrackInfo* track, StreamInfo* stream);
  Status Pause();
  Status Unpause();
  Status Stop();

  /// A key press (or its repetition) with a character in Mac OS Roman. Says whether it was used.
  bool Key(char character, bool repeat);

  /// Sent only to plug-ins that asked for them; others answer `status::kNotHandled`.
  Status Idle();
  Status Configure();

private:
  PluginHost(const PluginModule& module, HostServices& services);

  static Status OnRequest(void* appCookie, FourCharCode code, HostMessage* message);
  Status Register(HostMessage::Body& body);
  Status FillFileSpec(HostMessage::Body& body);
  Status ReadPluginData(HostMessage::Body& body);
  Status WritePluginData(HostMessage::Body& body);
  Status SwitchFullScreen(HostMessage::Body& body);
  Status TakeFullScreenOptions(HostMessage::Body& body);

  void UsePort(GrafPtr port);
  Status Send(FourCharCode code, VisualMessage& message);
  Status SendBare(FourCharCode code);
  Status SendTrack(FourCharCode code, TrackInfo* track, StreamInfo* stream);

  PluginModule module_;
  HostServices& services_;
  PluginRegistration registration_;
  VisualHandlerProc handler_ = nullptr;
  void* refCon_ = nullptr;
  bool initialized_ = false;
  bool shown_ = false;
  GrafPtr port_ = nullptr; ///< shown in, or about to be; else null
  HalvenorFrameUse frameUse_ = kHalvenorFrameSeen;
};

} // namespace halvenor
