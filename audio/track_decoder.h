// The decoder of one track of a `GaplessPipeline`. Private to the audio library.
#pragma once

#include "audio/analysis_tap.h"
#include "audio/gst_media.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

namespace halvenor {

/// Decodes one medium into a pad of a concat element, and holds back its end until the host says
/// what follows. One thread, the host's, makes all calls; but the state of the elements is changed
/// on the pipeline's worker.
class TrackDecoder {
public:
  using Clock = std::chrono::steady_clock;

  struct Tags {
    MediaTags medium;
    StreamTags stream;
  };

  /// To be added to the pipeline that has `concat`. Null if GStreamer lacks "uridecodebin".
  static std::shared_ptr<TrackDecoder> Make(int number, const gst_media::Medium& medium,
                                            const gst_media::Element& concat);

  [[nodiscard]] GstElement* Decoder() const { return decoder_.get(); }
  /// The pad of the concat element.
  [[nodiscard]] GstPad* Joint() const { return joint_.get(); }

  /// What was decoded before a seek does not count.
  void NoteSeekAsked() { ++seeksAsked_; }
  /// Any thread.
  void NoteSeekFailed();
  /// Whether the message says that all of the track was decoded, after the last seek asked for.
  bool IsDecoded(GstMessage* message) const;
  /// What the track has said of itself since the last call; none if nothing new.
  std::optional<Tags> NewTags();
  /// When bytes of a stream last came in.
  [[nodiscard]] Clock::time_point LastBytes() const;
  /// Seconds.
  [[nodiscard]] std::optional<double> Length() const;

private:
  /// What the decoder's threads share with the host. Lives as long as either. The mutex is held by
  /// whoever touches it, the constructing and the last one too.
  struct Shared {
    ~Shared() { const std::scoped_lock lock(mutex); }
    int number = 0;
    gst_media::Pad joint;
    bool announced = false;
    int seeks = 0; // made, or failed
    Clock::time_point lastBytes;
    std::mutex mutex;
    Tags tags;
    bool newTags = false;
  };

  TrackDecoder() = default;
  void Connect(bool network);
  static void OnPad(GstElement* decoder, GstPad* pad, Shared* shared);
  static void OnSource(GstElement* decoder, GstElement* source, Shared* shared);
  static GstPadProbeReturn OnFlow(GstPad* pad, GstPadProbeInfo* info, void* shared);
  static GstPadProbeReturn OnEvent(GstPad* pad, GstEvent* event, Shared& shared);
  static GstPadProbeReturn OnBytes(GstPad* pad, GstPadProbeInfo* info, void* shared);

  gst_media::Element decoder_;
  gst_media::Pad joint_; // where it meets the others
  int seeksAsked_ = 0;
  const std::shared_ptr<Shared> shared_ = std::make_shared<Shared>();
};

} // namespace halvenor
