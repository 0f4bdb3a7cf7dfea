#include "audio/output_choice.h"

#include "audio/sound_server.h"
#include "files/released_by.h"

#include <alsa/asoundlib.h>
#include <utility>

namespace halvenor {

namespace {

constexpr std::chrono::seconds kServerPatience{2};

constexpr const char* kServerSink =
    "pulsesink client-name=Halvenor stream-properties=\"props,media.role=music\"";
constexpr const char* kCardSink = "alsasink";
constexpr const char* kNoSink = "fakesink sync=true";

bool CanPlay(int card) {
  snd_ctl_t* opened = nullptr;
  const std::string name = "hw:" + std::to_string(card);
  if (snd_ctl_open(&opened, name.c_str(), SND_CTL_NONBLOCK | SND_CTL_READONLY) < 0) return false;
  const std::unique_ptr<snd_ctl_t, ReleasedBy<snd_ctl_close>> control(opened);
  snd_pcm_info_t* made = nullptr;
  if (snd_pcm_info_malloc(&made) < 0) return false;
  const std::unique_ptr<snd_pcm_info_t, ReleasedBy<snd_pcm_info_free>> info(made);
  for (int device = -1; snd_ctl_pcm_next_device(opened, &device) >= 0 && device >= 0;) {
    snd_pcm_info_set_device(made, static_cast<unsigned>(device));
    snd_pcm_info_set_subdevice(made, 0);
    snd_pcm_info_set_stream(made, SND_PCM_STREAM_PLAYBACK);
    if (snd_ctl_pcm_info(opened, made) >= 0) return true;
  }
  return false;
}

bool HasSoundCard() {
  for (int card = -1; snd_card_next(&card) >= 0 && card >= 0;)
    if (CanPlay(card)) return true;
  return false;
}

} // namespace

OutputChoice::OutputChoice(std::string audioSink, SoundServer* server)
    : audioSink_(std::move(audioSink)),
      ownServer_(server == nullptr && audioSink_.empty() ? std::make_unique<SoundServer>()
                                                         : nullptr),
      server_(server != nullptr ? server : ownServer_.get()) {}

OutputChoice::~OutputChoice() = default;

void OutputChoice::Poll() {
  if (ownServer_) ownServer_->Poll();
}

bool OutputChoice::ServerHasOutput() const {
  return server_->CurrentState() == SoundServer::State::Connected && !server_->Outputs().empty();
}

std::optional<std::string> OutputChoice::Sink(Clock::time_point since) {
  if (!audioSink_.empty()) return silent_ ? kNoSink : audioSink_;
  serverChanges_ = server_->Changes();
  if (silent_) return kNoSink;
  const SoundServer::State state = server_->CurrentState();
  if (state == SoundServer::State::Connecting && Clock::now() - since < kServerPatience)
    return std::nullopt;
  if (ServerHasOutput()) return kServerSink;
  if (state != SoundServer::State::Connected && HasSoundCard()) return kCardSink;
  silent_ = true;
  return kNoSink;
}

bool OutputChoice::NoteFailure() {
  return !std::exchange(silent_, true);
}

bool OutputChoice::IsBack() {
  if (!silent_ || !audioSink_.empty() || server_->Changes() == serverChanges_) return false;
  serverChanges_ = server_->Changes();
  if (!ServerHasOutput()) return false;
  silent_ = false;
  return true;
}

} // namespace halvenor
