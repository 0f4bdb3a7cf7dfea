#include "audio/media_player.h"

#include "audio/playback.h"

#include <utility>

namespace halvenor {

MediaPlayer::MediaPlayer(Listener& listener, std::string audioSink, SoundServer* server)
    : playback_(std::make_unique<Playback>(listener, std::move(audioSink), server)) {}

MediaPlayer::~MediaPlayer() = default;

void MediaPlayer::Open(const std::string& medium) {
  playback_->Open(medium);
}

void MediaPlayer::SetNext(const std::string& medium) {
  playback_->SetNext(medium);
}

void MediaPlayer::Play() {
  playback_->Play();
}

void MediaPlayer::Pause() {
  playback_->Pause();
}

void MediaPlayer::Stop() {
  playback_->Stop();
}

void MediaPlayer::Seek(double seconds) {
  playback_->Seek(seconds);
}

void MediaPlayer::Poll() {
  playback_->Poll();
}

void MediaPlayer::SetVolume(double volume) {
  playback_->SetVolume(volume);
}

void MediaPlayer::SetMuted(bool muted) {
  playback_->SetMuted(muted);
}

void MediaPlayer::SetOffset(int milliseconds) {
  playback_->SetOffset(milliseconds);
}

MediaPlayer::State MediaPlayer::CurrentState() const {
  return playback_->CurrentState();
}

const std::string& MediaPlayer::CurrentMedium() const {
  return playback_->CurrentMedium();
}

double MediaPlayer::Position() const {
  return playback_->Position();
}

std::optional<double> MediaPlayer::Length() const {
  return playback_->Length();
}

bool MediaPlayer::CanSeek() const {
  return playback_->CanSeek();
}

double MediaPlayer::Volume() const {
  return playback_->Volume();
}

bool MediaPlayer::IsMuted() const {
  return playback_->IsMuted();
}

} // namespace halvenor
