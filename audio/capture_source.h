// What the computer plays, listened to: the monitor of an output, or a microphone if one is chosen.
#pragma once

#include "audio/sound_server.h"
#include "protocol/render_visual_data.h"

#include <memory>
#include <string>

namespace halvenor {

/// Listens to one source and tells, record by record, what is heard at this moment, quiet sound
/// lifted by an automatic gain (audio/automatic_gain.h).
///
/// It never ends by itself: when the source, the server or the whole machine goes to sleep or goes
/// away, it waits and comes back. Without a chosen source it listens to the monitor of the default
/// output, whichever that is at the time; a microphone is opened only if its name was asked for.
///
/// One thread, the host's, makes all calls, and everything is told to the listener on that thread
/// from within `Poll`. There are no other threads, and no call waits for the server.
class CaptureSource {
public:
  enum class State {
    Closed,     ///< not asked to listen
    Connecting, ///< on the way to the server or the source; for less than a second, as a rule
    Listening,  ///< there is sound
    NoSignal,   ///< listening, but for 2 seconds nothing above -80 dBFS came
    Muted,      ///< the same, and the source is muted or its volume is 0
    DeviceGone, ///< waiting for a source to be there
    ServerGone  ///< waiting for the sound server
  };

  class Listener {
  public:
    virtual ~Listener() = default;
    /// The state has changed, or the source has. `source` is the description of what is listened
    /// to, or of what was last (may be empty before the first).
    virtual void StateChanged(State state, const std::string& source) = 0;
    /// A record is due: one every 50 ms from `Open` to `Close` in every state, told when the sound
    /// in it is heard, or as soon after as it is known. Without sound the records are silent.
    virtual void Record(const RenderVisualData& record) = 0;
    /// With every record: the `MeterLevel` of its sound before any gain.
    virtual void Level(float level) = 0;
    /// The chosen source is not there: until it comes back, the default is listened to. Told once
    /// each time. `name` as it was given to `Open`.
    virtual void ChosenSourceGone(const std::string& name) = 0;
    /// The chosen source is listened to again.
    virtual void ChosenSourceBack(const std::string& name) = 0;
  };

  /// `server` and `listener` must outlive this. From the listener's functions any call is allowed,
  /// the destruction too.
  CaptureSource(SoundServer& server, Listener& listener);
  ~CaptureSource();
  CaptureSource(const CaptureSource&) = delete;
  CaptureSource& operator=(const CaptureSource&) = delete;

  /// Listens to the source of that name (`SoundSource::name`); empty: follows the default output.
  /// What was listened to before is left. The state is `Connecting` at once, without a word to the
  /// listener.
  void Open(const std::string& name = {});
  /// Listens no longer; nothing is told from then on.
  void Close();

  /// Tells the listener what is due. To be called every 10 ms or so, after `SoundServer::Poll`.
  /// After a long absence only the last few records are told.
  void Poll();

  /// Shows everything that much later (or earlier, as far as the sound is known ahead), up to
  /// `kMostOffset`: for outputs whose latency the server does not know. 0 at first.
  void SetOffset(int milliseconds);

  [[nodiscard]] State CurrentState() const;
  /// The name given to `Open`.
  [[nodiscard]] const std::string& Chosen() const;
  /// What is listened to now; its name is empty while there is none.
  [[nodiscard]] SoundSource Current() const;

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

} // namespace halvenor
