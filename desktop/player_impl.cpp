#include "desktop/player_impl.h"

#include "desktop/shown_text.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace halvenor {
namespace {

constexpr int kMostOffset = 2000;

// How often what is going on has to be looked at, milliseconds. Records are heard in time with the
// first; the last is that of the idle messages.
constexpr int kSoundPace = 10;
constexpr int kSilencePace = 50;
constexpr int kIdlePace = 100;

QString OffsetKey(const SoundOutput& output) {
  return QStringLiteral("offsets/") +
         QString::fromLatin1(QByteArray::fromStdString(output.name).toPercentEncoding());
}

} // namespace

Player::Impl::Impl(Player& player, PluginHost& plugin, QSettings& kept)
    : self(player), settings(kept), feed(plugin), listening(server, kept), playing(server) {
  MediaPlayer& media = playing.Media();
  media.SetVolume(std::clamp(settings.value(kVolumeKey, 1.0).toDouble(), 0.0, 1.0));
  media.SetMuted(settings.value(kMutedKey, false).toBool());
  Connect();
  SetPace();
}

void Player::Impl::Connect() {
  connect(&timer, &QTimer::timeout, &self, [this] { Tick(); });
  connect(&playing, &QueuePlayer::Changed, &self, [this] { FollowPlaying(); });
  connect(&listening, &Listening::Changed, &self, [this] { FollowListening(); });
  const auto record = [this](const RenderVisualData& data) { feed.Record(data); };
  connect(&playing, &QueuePlayer::RecordDue, &self, record);
  connect(&listening, &Listening::RecordDue, &self, record);
  connect(&playing, &QueuePlayer::LevelChanged, &self, &Player::LevelChanged);
  connect(&listening, &Listening::LevelChanged, &self, &Player::LevelChanged);
  const auto report = [this](const QString& line) { Report(line); };
  connect(&playing, &QueuePlayer::Reported, &self, report);
  connect(&listening, &Listening::Reported, &self, report);
}

void Player::Impl::Tick() {
  server.Poll();
  if (server.Changes() != serverChanges) FollowServer();
  playing.Poll();
  listening.Poll();
  if (ended) return;
  feed.Idle();
  SetPace();
}

int Player::Impl::NeededPace() const {
  if (mode == Mode::Playing) return playing.IsPaused() ? kIdlePace : kSoundPace;
  if (mode == Mode::Idle) return kIdlePace;
  switch (listening.State()) {
  case CaptureSource::State::Connecting:
  case CaptureSource::State::Listening:
    return kSoundPace;
  case CaptureSource::State::NoSignal:
    return kSilencePace;
  default:
    return kIdlePace;
  }
}

void Player::Impl::SetPace() {
  const int pace = NeededPace();
  if (timer.isActive() && timer.interval() == pace) return;
  timer.setTimerType(pace == kSoundPace ? Qt::PreciseTimer : Qt::CoarseTimer);
  timer.start(pace);
}

void Player::Impl::SetMode(Mode wanted) {
  if (mode == wanted) return;
  mode = wanted;
  feed.Stop();
  if (mode != Mode::Listening) listening.End();
  if (mode != Mode::Playing) playing.Stop();
  emit self.LevelChanged(0);
}

std::optional<SoundOutput> Player::Impl::Output() const {
  if (mode == Mode::Listening) {
    const auto& outputs = server.Outputs();
    const auto heard = std::ranges::find(outputs, listening.SourceName(), &SoundOutput::monitor);
    if (heard != outputs.end()) return *heard;
  }
  return server.DefaultOutput();
}

void Player::Impl::FollowServer() {
  serverChanges = server.Changes();
  if (const std::optional<SoundOutput> output = Output()) {
    offset = settings.value(OffsetKey(*output)).toInt();
    playing.Media().SetOffset(offset);
    listening.SetOffset(offset);
  }
  TellChange();
}

void Player::Impl::FollowPlaying() {
  if (ended) return;
  if (playing.IsActive()) SetMode(Mode::Playing);
  if (mode != Mode::Playing) return;
  if (!playing.IsActive()) {
    SetMode(Mode::Idle);
  } else if (playing.IsOpening()) {
    feed.Stop();
  } else {
    const auto& radio = playing.Radio();
    const MediaTags& tags = playing.Tags();
    feed.Play({.title = radio && !radio->station.empty() ? radio->station : tags.title,
               .artist = tags.artist,
               .stream = radio ? std::optional(radio->title) : std::nullopt});
    playing.IsPaused() || playing.IsReconnecting() ? feed.Pause() : feed.Unpause();
  }
  if (playing.IsPaused()) emit self.LevelChanged(0);
  TellChange();
}

void Player::Impl::FollowListening() {
  if (!Is(Mode::Listening)) return;
  FollowServer(); // another source may belong to another output
  TellListeningTitles();
}

void Player::Impl::TellListeningTitles() {
  if (!Is(Mode::Listening)) return;
  if (!others.title.isEmpty()) {
    feed.Play({.title = others.title.toStdString(),
               .artist = others.artist.toStdString(),
               .stream = std::nullopt});
  } else if (listening.State() == CaptureSource::State::Listening) {
    feed.Play();
  }
}

void Player::Impl::TellChange() {
  SetPace();
  emit self.Changed();
  const QString title = self.Title();
  const QString artist = self.Artist();
  if (title == toldTitle && artist == toldArtist) return;
  toldTitle = title;
  toldArtist = artist;
  emit self.TrackChanged(title, artist);
}

void Player::Impl::Report(const QString& line) {
  emit self.Reported(ShownLine(line));
}

void Player::Impl::Keep(const QString& key, const QVariant& value) {
  if (!ended) settings.setValue(key, value);
}

void Player::Impl::SetOffset(int milliseconds) {
  const std::optional<SoundOutput> output = Output();
  if (!output) return;
  Keep(OffsetKey(*output), std::clamp(milliseconds, -kMostOffset, kMostOffset));
  FollowServer();
}

} // namespace halvenor
