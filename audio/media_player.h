// Sound that is heard while its records are delivered: files and streams, played live.
#pragma once

#include "audio/media_tags.h"
#include "protocol/render_visual_data.h"

#include <memory>
#include <optional>
#include <string>

namespace halvenor {

class SoundServer;

class Playback;

/// Plays one medium at a time and tells, record by record, what is heard at this moment.
///
/// Internet radio (an http address without an end) is connected again by itself when it stalls for
/// 10 seconds, drops or ends, after pauses that grow from 1 to 30 seconds, for as long as it takes;
/// only an address that has not played at all yet fails. A file that comes over the network does
/// the same, and goes on where it was lost.
///
/// One thread, the host's, makes all calls, and everything is told to the listener on that thread
/// from within `Poll`, when the player has finished looking around: never from threads of the media
/// library. No call waits for a device, a server or a file.
class MediaPlayer {
public:
  enum class State { Stopped, Playing, Paused };

  class Listener {
  public:
    virtual ~Listener() = default;
    /// The first sound of the medium is there and begins to play (or waits, when paused). Also when
    /// the first sound of what `SetNext` named is heard, without `Ended` before it, and when it
    /// plays again after `Reconnecting`.
    virtual void Started(const MediaTags& tags) = 0;
    /// A tag has changed since `Started`.
    virtual void TagsChanged(const MediaTags& tags) = 0;
    /// Of radio only: right after `Started`, and when station or title have changed.
    virtual void StreamTagsChanged(const StreamTags& /*tags*/) {}
    /// The sound of the next 50 ms, told when the first of it is heard.
    virtual void Record(const RenderVisualData& record) = 0;
    /// `CurrentState` has changed for another reason than `Open`: `Paused` once no more is heard,
    /// `Playing` when it is heard again. Not told of an end and a failure, which are below.
    virtual void StateChanged(State /*state*/) {}
    /// The medium ends in a few seconds: the moment for `SetNext`. Once per medium, again after
    /// `Seek`; not for radio.
    virtual void AboutToEnd() {}
    /// The medium has come to its end and had clearly less sound than it promises: it is cut off or
    /// damaged. One line that names it, before `Ended` or the next `Started`.
    virtual void SoundMissing(const std::string& /*text*/) {}
    /// The last sound has been heard and there is no next medium; the player is stopped.
    virtual void Ended() = 0;
    /// One line that names the medium; the player is stopped.
    virtual void Failed(const std::string& error) = 0;
    /// What comes over the network was lost for that reason (one line that names it) and is tried
    /// again by itself after a pause; the player's state stays as it is. Again for every try that
    /// fails.
    virtual void Reconnecting(const std::string& /*reason*/) {}
  };

  /// `listener` must outlive the player. From its functions any call is allowed, the player's
  /// destruction too; what was still to be told then is dropped.
  ///
  /// `audioSink` is what sounds, as GStreamer's textual description of a bin; empty: the default
  /// audio device. Without any audio device, or when the device fails while playing, the medium
  /// goes on silently at its own speed, and is heard again when the sound server comes back.
  ///
  /// `server`, polled by its owner, must outlive the player; without one the player has its own.
  explicit MediaPlayer(Listener& listener, std::string audioSink = {},
                       SoundServer* server = nullptr);
  /// Waits for what plays to let go of its device, two seconds at most.
  ~MediaPlayer();
  MediaPlayer(const MediaPlayer&) = delete;
  MediaPlayer& operator=(const MediaPlayer&) = delete;

  /// Stops what plays and plays `medium`, a path or a URI, from its start. What goes wrong is told
  /// by `Failed`.
  void Open(const std::string& medium);

  /// Plays `medium` when the present one ends, without a gap if both are files; empty: nothing. Of
  /// use between `AboutToEnd` and the end; forgotten by `Open`, `Stop`, `Seek` and when it cannot
  /// be played or joined (then `Ended` comes, and `Open` tells why).
  void SetNext(const std::string& medium);

  /// Goes on after `Pause`, or plays the last medium from its start after it ended, failed or was
  /// stopped. Without a medium nothing happens.
  void Play();
  /// Nothing is heard any more within 60 ms on a sound server.
  void Pause();
  void Stop();
  /// Goes to `seconds` from the start, brought into the medium's length. Nothing happens where it
  /// cannot be done: in radio, and while nothing is open.
  void Seek(double seconds);

  /// To be called every 10 ms or so: tells the listener what has happened and which records are
  /// due. After a long absence only the last few are told.
  void Poll();

  /// 0 to 1 as the ear judges it (the cube goes to the samples), brought into that range; NaN is
  /// ignored. 1 at first. What the records show does not depend on it.
  void SetVolume(double volume);
  void SetMuted(bool muted);
  /// Tells records that much later, or earlier, up to `kMostOffset`: for outputs whose latency the
  /// server does not know. 0 at first.
  void SetOffset(int milliseconds);

  /// What was last asked for; `Stopped` also after the end and after a failure.
  [[nodiscard]] State CurrentState() const;
  /// As given to `Open`, or to `SetNext` once that is heard.
  [[nodiscard]] const std::string& CurrentMedium() const;
  /// What is heard now, in seconds from the start, the device's latency taken into account.
  [[nodiscard]] double Position() const;
  /// Length in seconds; none while it is not known, and for endless streams.
  [[nodiscard]] std::optional<double> Length() const;
  /// Whether `Seek` can do something.
  [[nodiscard]] bool CanSeek() const;
  [[nodiscard]] double Volume() const;
  [[nodiscard]] bool IsMuted() const;

private:
  std::unique_ptr<Playback> playback_;
};

} // namespace halvenor
