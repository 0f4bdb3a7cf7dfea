// The messages about the sound, sent to the plug-in in the order it expects.
#pragma once

#include "host/plugin_host.h"
#include "protocol/render_visual_data.h"

#include <QtCore/QElapsedTimer>

#include <cstdint>
#include <optional>
#include <string>

namespace halvenor {

/// The texts of what is playing, UTF-8.
struct FeedTitles {
  std::string title;
  std::string artist;
  std::optional<std::string> stream; ///< the title of an endless stream; none: it is no stream
  friend bool operator==(const FeedTitles&, const FeedTitles&) = default;
};

/// Remembers what was sent: "play" is sent after a stop, "change track" while playing, and nothing
/// is sent twice.
class PluginFeed {
public:
  /// `plugin` must outlive this object.
  explicit PluginFeed(PluginHost& plugin);

  /// Something without titles plays, or goes on.
  void Play();
  void Play(const FeedTitles& titles);
  void Pause();
  void Unpause();
  void Stop();
  void Record(const RenderVisualData& record);
  /// Sends an idle message unless a record or an idle message was sent just before. Call it at
  /// least every 100 ms.
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
