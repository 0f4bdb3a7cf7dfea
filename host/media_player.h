// Sound that is heard while its records are delivered: files and streams, played live.
#pragma once

#include "host/media_source.h"
#include "protocol/render_visual_data.h"

#include <memory>
#include <optional>
#include <string>

namespace halvenor {

/// Plays one medium at a time and tells, record by record, what is heard at this moment.
///
/// One thread, the host's, makes all calls, and everything is told to the listener on that thread
/// from within `Poll`: never from threads of the media library.
class MediaPlayer {
public:
  class Listener {
  public:
    virtual ~Listener() = default;
    /// The first sound of the medium is there and begins to play (or waits, when paused).
    virtual void Started(const MediaTags& tags) = 0;
    /// Title or artist have changed since `Started`.
    virtual void TagsChanged(const MediaTags& tags) = 0;
    /// The sound of the next 50 ms, told when the first of it is heard.
    virtual void Record(const RenderVisualData& record) = 0;
    /// The last sound has been heard; the player is stopped.
    virtual void Ended() = 0;
    /// One line that names the medium; the player is stopped.
    virtual void Failed(const std::string& error) = 0;
  };

  enum class State { Stopped, Playing, Paused };

  /// `listener` must outlive the player. From its functions any call but `Poll` and the player's
  /// destruction is allowed.
  ///
  /// `audioSink` is what sounds, as GStreamer's textual description of a bin; empty: the default
  /// audio device. Without any audio device, or when the device fails while playing, the medium
  /// goes on silently at its own speed.
  explicit MediaPlayer(Listener& listener, std::string audioSink = {});
  ~MediaPlayer();
  MediaPlayer(const MediaPlayer&) = delete;
  MediaPlayer& operator=(const MediaPlayer&) = delete;

  /// Stops what plays and plays `medium`, a path or a URI, from its start. Returns as soon as the
  /// audio device is open: what goes wrong is told by `Failed`.
  void Open(const std::string& medium);

  /// Goes on after `Pause`, or plays the last medium from its start after it ended, failed or was
  /// stopped. Without a medium nothing happens.
  void Play();
  void Pause();
  void Stop();

  /// To be called every 10 ms or so: tells the listener what has happened and which records are
  /// due. After a long absence only the last few are told.
  void Poll();

  /// What was last asked for; `Stopped` also after the end and after a failure.
  [[nodiscard]] State CurrentState() const;
  /// What is heard now, in seconds from the start, the device's latency taken into account.
  [[nodiscard]] double Position() const;
  /// Length in seconds; none while it is not known, and for endless streams.
  [[nodiscard]] std::optional<double> Length() const;

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

} // namespace halvenor
