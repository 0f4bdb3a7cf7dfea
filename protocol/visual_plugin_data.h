// The plug-in's state record: what the host has delivered, the smoothed measures that are drawn,
// the message lines and the settings.
#pragma once

#include "protocol/records.h"
#include "protocol/render_visual_data.h"
#include "protocol/settings.h"

#include <cstdint>
#include <string>

namespace halvenor {

/// Made zero-filled by the handler on 'init', released on 'clr '. The host holds its address as
/// the reference constant of later messages. Only `settings` outlives it, in the host's store.
/// Every access needs the plug-in's lock; from outside the plug-in, `RecordGuard`.
struct VisualPluginData {
  void* appCookie;
  HostProc appProc;
  FileSpec pluginFileSpec;
  std::uint32_t windowOptions; ///< option bits of the last 'show' or 'swin'
  RenderVisualData renderData; ///< the last delivery
  std::uint32_t renderTimeStampID;
  TrackInfo trackInfo;
  StreamInfo streamInfo;
  std::uint8_t playing;
  WindowRef frontWindow;
  float channelLevel[kAudioChannels]; ///< smoothed mean level per channel
  std::uint8_t smoothedSpectrum[kAudioChannels][kSamplesPerChannel]; ///< bins 256.. stay 0
  float highestActiveBin;                                            ///< smoothed, 100 to 256
  float loudness;              ///< smoothed mean of the channel levels
  std::int32_t trackTextTime;  ///< milliseconds line 1 stays; 0 or less: hidden
  std::int32_t streamTextTime; ///< milliseconds line 2 stays
  std::string* trackText;      ///< line 1, owned, may be null
  std::string* streamText;     ///< line 2, owned, may be null
  Settings settings;
};

} // namespace halvenor
