// What the plug-in hears of the sound: the messages, each only where it belongs.
#pragma once

#include "host/plugin_host.h"
#include "protocol/render_visual_data.h"

#include <QtCore/QElapsedTimer>

#include <cstdint>
#include <optional>
#include <string>

namespace halvenor {

/// The texts of what plays, UTF-8.
struct FeedTitles {
  std::string title;
  std::string artist;
  std::optional<std::string> stream; ///< what an endless stream plays now; none: it is no stream
  friend bool operator==(const FeedTitles&, const FeedTitles&) = default;
};

/// Knows what was told before: play begins what had stopped, what follows is a change of the track,
/// and nothing is told twice.
class PluginFeed {
public:
  /// `plugin` must outlive this object.
  explicit PluginFeed(PluginHost& plugin);

  /// Something plays, or plays on, that says nothing of itself.
  void Play();
  void Play(const FeedTitles& titles);
  void Pause();
  void Unpause();
  void Stop();
  void Record(const RenderVisualData& record);
  /// Tells that nothing happens, if nothing has happened for a while. To be called at least every
  /// 100 ms.
  void Idle();

private:
  enum class State { Stopped, Playing, Paused };

  PluginHost& plugin_;
  State state_ = State::Stopped;
  std::optional<FeedTitles> titles_;
  std::uint32_t records_ = 0;
  QElapsedTimer sinceMessage_; ///< since the last record or idle message
};

} // namespace halvenor
