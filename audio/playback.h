// The state machine behind `MediaPlayer`. Private to the audio library.
#pragma once

#include "audio/gapless_pipeline.h"
#include "audio/gst_media.h"
#include "audio/heard_track.h"
#include "audio/media_player.h"
#include "audio/output_choice.h"
#include "audio/pending_calls.h"
#include "audio/worker.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace halvenor {

/// Plays one medium at a time, as `MediaPlayer` promises. `Poll` looks at everything once, gathers
/// what there is to tell and tells it last, so nothing changes under the code that looks.
///
///   phase     | on                                                  | goes to
///   ----------+-----------------------------------------------------+----------------------------
///   any       | Open; Play after the end                            | Waiting
///             | Stop                                                | Idle
///   Waiting   | it is known which output there is                   | Opening, or Idle (Failed)
///   Opening   | the first sound is there                            | Sounding (Started)
///   Opening,  | the output fails, or comes back; Seek after all of  | Waiting
///   Sounding  |   the medium was decoded                            |
///             | an error, or nothing comes for long                 | Idle (Failed), or for what
///             |                                                     |   comes over the network and
///             |                                                     |   has played Lost
///             |                                                     |   (Reconnecting)
///   Sounding  | the last sound was heard                            | Idle (Ended), or for radio
///             |                                                     |   Lost (Reconnecting)
///   Lost      | the pause before the next try is over               | Waiting
class Playback {
public:
  using State = MediaPlayer::State;
  using Listener = MediaPlayer::Listener;

  Playback(Listener& listener, std::string audioSink, SoundServer* server);
  ~Playback();
  Playback(const Playback&) = delete;
  Playback& operator=(const Playback&) = delete;

  void Open(const std::string& medium);
  void SetNext(const std::string& medium);
  void Play();
  void Pause();
  void Stop();
  void Seek(double seconds);
  void Poll();
  void SetVolume(double volume);
  void SetMuted(bool muted);
  void SetOffset(int milliseconds);

  [[nodiscard]] State CurrentState() const { return wanted_; }
  [[nodiscard]] const std::string& CurrentMedium() const { return name_; }
  [[nodiscard]] double Position();
  [[nodiscard]] std::optional<double> Length() const;
  [[nodiscard]] bool CanSeek() const;
  [[nodiscard]] double Volume() const { return volume_; }
  [[nodiscard]] bool IsMuted() const { return muted_; }

private:
  using Clock = std::chrono::steady_clock;

  enum class Phase { Idle, Waiting, Opening, Sounding, Lost };

  /// What the listener knows of the medium's start.
  enum class StartTold {
    Never,
    No, ///< not since it was lost
    Yes
  };

  using End = HeardTrack::End;

  /// What calls are about, to forget those that a later act makes pointless.
  enum class Topic { Medium, Record, AboutToEnd };

  struct Next {
    int track;
    std::string name;
    gst_media::Medium medium;
  };

  /// A track that was decoded to its end.
  struct Decoded {
    int track;
    std::optional<double> length; ///< seconds, as its decoder knows by then
  };

  void Leave();
  void WaitToBegin(double at);
  void Begin();
  void Fail(const std::string& text);
  void Lose(const std::string& reason);
  void SetWanted(State wanted);
  void ApplyWanted();
  void ApplyVolume();
  void TellState(State reached);

  void HandleBus();
  void Handle(GstMessage* message);
  void HandleError(GstMessage* message);
  void HandleState(GstMessage* message);
  void HandleBuffering(GstMessage* message);
  void HandleFirstSound();
  void HandleEnd();

  void FollowTrack();
  void ReleaseEnd();
  void SwitchTrack();
  void DropNext();
  void TellMissingSound();
  void TellNewTags();
  bool FindPosition();
  void TellRecords(std::int64_t until);
  void WatchStream();
  [[nodiscard]] bool IsRadio() const { return track_.IsRadio(pipeline_.get()); }
  [[nodiscard]] bool IsDecoded() const { return decoded_ && decoded_->track == track_.number; }

  PendingCalls<Listener, Topic> calls_;
  OutputChoice output_;
  Worker worker_;

  // What was asked for.
  std::string name_; // of the last medium
  State wanted_ = State::Stopped;
  double volume_ = 1;
  bool muted_ = false;
  std::int64_t offset_ = 0; // nanoseconds

  // The medium.
  Phase phase_ = Phase::Idle;
  StartTold startTold_ = StartTold::Never;
  State stateTold_ = State::Stopped;
  bool seekable_ = true; // unless its server refused
  double beginAt_ = 0;   // seconds, for `Waiting` and `Opening`
  Clock::time_point begun_;
  Clock::time_point retryAt_; // for `Lost`
  std::size_t tries_ = 0;     // of the next connection

  // The pipeline, for `Opening` and `Sounding`.
  std::unique_ptr<GaplessPipeline> pipeline_;
  std::optional<bool> applied_; // whether it was told to play
  bool buffering_ = false;
  std::string missingDecoder_; // what GStreamer lacks for this medium

  // The track that is heard, and the one after it.
  HeardTrack track_;
  std::optional<Decoded> decoded_; // the last track that was
  std::optional<Next> next_;

  std::int64_t heard_ = 0; // running time, nanoseconds
  double position_ = 0;    // seconds, when last asked
  double toldUntil_ = 0;   // seconds; the records before have been told
  Clock::time_point lastTold_;
};

} // namespace halvenor
