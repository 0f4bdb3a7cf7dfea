// Records that cross the host boundary, packed as published. The published offsets are those of a
// machine with 4-byte pointers; wider pointers widen the record where they stand. Numbers are in
// the machine's own byte order.
#pragma once

#include "platform/ports.h"
#include "protocol/four_char_code.h"
#include "protocol/render_visual_data.h"

#include <cstddef>
#include <cstdint>

namespace halvenor {

struct HostMessage;
union VisualMessage;

/// The host's callback: every request of the plug-in goes through it.
using HostProc = Status (*)(void* appCookie, FourCharCode request, HostMessage* record);

/// A plug-in's message handler, and its exported entry.
using VisualHandlerProc = Status (*)(FourCharCode message, VisualMessage* record, void* refCon);
using PluginEntryProc = Status (*)(FourCharCode message, void* record, void* refCon);

/// The name under which a plug-in exports its entry.
inline constexpr char kPluginEntryName[] = "iTunesPluginMainMachO";

/// Full screen, in the option bits of 'show' and 'swin'.
inline constexpr std::uint32_t kFullScreenOption = 1u << 0;

inline constexpr std::size_t kFileSpecSize = 70;
inline constexpr std::size_t kTrackInfoSize = 2112;
inline constexpr std::size_t kStreamInfoSize = 772;
inline constexpr std::size_t kTrackTitleOffset = 8;
inline constexpr std::size_t kTrackArtistOffset = 520;
inline constexpr std::size_t kStreamTitleOffset = 4;

/// Where a plug-in's file lies, in the platform's own opaque form.
struct FileSpec {
  std::uint8_t bytes[kFileSpecSize];
};

/// The host's track record. Title and artist are length-prefixed strings in Mac OS Roman, at
/// `kTrackTitleOffset` and `kTrackArtistOffset`.
struct TrackInfo {
  std::uint8_t bytes[kTrackInfoSize];
};

/// The host's stream record, with the stream title at `kStreamTitleOffset`.
struct StreamInfo {
  std::uint8_t bytes[kStreamInfoSize];
};

#pragma pack(push, 1)

/// What the exported entry gets with 'init'.
struct PluginInitMessage {
  std::uint32_t majorVersion;
  std::uint32_t minorVersion;
  void* appCookie;
  HostProc appProc;
};

/// What the handler gets with 'init'; `refCon` is the plug-in's answer.
struct VisualInitMessage {
  std::uint32_t majorVersion;
  std::uint32_t minorVersion;
  std::uint32_t appVersion;
  void* appCookie;
  HostProc appProc;
  std::uint32_t options;
  void* refCon;
};

/// 'show' and 'swin'.
struct VisualWindowMessage {
  GrafPtr port;
  Rect drawRect;
  std::uint32_t options;
};

/// 'vrnd'.
struct VisualRenderMessage {
  RenderVisualData* renderData; ///< may be null
  std::uint32_t timeStampID;
};

/// 'vply' and 'ctrk'.
struct VisualTrackMessage {
  TrackInfo* trackInfo;   ///< may be null
  StreamInfo* streamInfo; ///< may be null
};

inline constexpr std::uint16_t kKeyDownEvent = 3;
inline constexpr std::uint16_t kKeyRepeatEvent = 5;

/// An event of the platform; the character of a key event is the low byte of `message`.
struct EventRecord {
  std::uint16_t what;
  std::uint32_t message;
  std::uint32_t when;
  std::int16_t whereVertical;
  std::int16_t whereHorizontal;
  std::uint16_t modifiers;
};

/// 'vevt'.
struct VisualEventMessage {
  EventRecord* event;
};

/// The record of a message to the handler, by its code.
union VisualMessage {
  VisualInitMessage init;
  VisualWindowMessage window;
  VisualRenderMessage render;
  VisualTrackMessage track;
  VisualEventMessage event;
};

/// A version in four bytes.
struct NumVersion {
  std::uint8_t major;
  std::uint8_t minorAndFix; ///< minor in the high nibble, fix in the low one
  std::uint8_t stage;       ///< 0x80: final
  std::uint8_t nonRelease;
};

/// Idle and configure messages wanted, in `RegistrationBody::options`.
inline constexpr std::uint32_t kWantsIdleMessages = 1u << 3;
inline constexpr std::uint32_t kWantsConfigure = 1u << 5;

/// What a plug-in says of itself when it registers.
struct RegistrationBody {
  std::uint8_t name[64]; ///< length-prefixed, at most 63 characters
  std::uint32_t options;
  FourCharCode creator;
  NumVersion version;
  VisualHandlerProc handler;
  void* refCon;
  std::uint32_t timeBetweenData; ///< milliseconds
  std::uint32_t waveformChannels;
  std::uint32_t spectrumChannels;
  std::int16_t minWidth;
  std::int16_t minHeight;
  std::int16_t maxWidth;
  std::int16_t maxHeight;
  std::uint16_t minFullScreenBitDepth; ///< 0: any
  std::uint16_t maxFullScreenBitDepth; ///< 0: any
  std::uint16_t windowAlignment;       ///< bytes
};

struct FileSpecBody {
  FileSpec* fileSpec;
};

struct PluginDataBody {
  void* data;
  std::uint32_t size;     ///< of the buffer, or of the data to store
  std::uint32_t sizeRead; ///< the host's answer to 'gprf'
};

struct FullScreenBody {
  std::uint8_t fullScreen; ///< 0 or 1
};

struct FullScreenOptionsBody {
  std::int16_t minBitDepth;
  std::int16_t maxBitDepth;
  std::int16_t preferredBitDepth;
  std::int16_t desiredWidth;
  std::int16_t desiredHeight;
};

inline constexpr std::uint32_t kHostMessageMajorVersion = 10;
inline constexpr std::uint32_t kHostMessageMinorVersion = 1;

/// A request of the plug-in to the host: a header and a body, by the request's code.
struct HostMessage {
  std::uint32_t majorVersion;
  std::uint32_t minorVersion;
  std::uint32_t size; ///< of the whole record, bytes
  union Body {
    std::uint8_t bytes[112 + 2 * (sizeof(void*) - 4)];
    RegistrationBody registration;
    FileSpecBody fileSpec;
    PluginDataBody pluginData;
    FullScreenBody fullScreen;
    FullScreenOptionsBody fullScreenOptions;
  } body;
};

#pragma pack(pop)

// How much wider than published one pointer is.
inline constexpr std::size_t kPointerGrowth = sizeof(void*) - 4;

static_assert(offsetof(PluginInitMessage, appCookie) == 8);
static_assert(offsetof(PluginInitMessage, appProc) == 12 + kPointerGrowth);
static_assert(offsetof(VisualInitMessage, appCookie) == 12);
static_assert(offsetof(VisualInitMessage, appProc) == 16 + kPointerGrowth);
static_assert(offsetof(VisualInitMessage, refCon) == 24 + 2 * kPointerGrowth);
static_assert(offsetof(VisualWindowMessage, drawRect) == 4 + kPointerGrowth);
static_assert(offsetof(VisualWindowMessage, options) == 12 + kPointerGrowth);
static_assert(offsetof(VisualRenderMessage, timeStampID) == 4 + kPointerGrowth);
static_assert(offsetof(VisualTrackMessage, streamInfo) == 4 + kPointerGrowth);
static_assert(offsetof(EventRecord, message) == 2 && sizeof(EventRecord) == 16);
static_assert(offsetof(RegistrationBody, options) == 64);
static_assert(offsetof(RegistrationBody, creator) == 68);
static_assert(offsetof(RegistrationBody, version) == 72);
static_assert(offsetof(RegistrationBody, handler) == 76);
static_assert(offsetof(RegistrationBody, refCon) == 80 + kPointerGrowth);
static_assert(offsetof(RegistrationBody, timeBetweenData) == 84 + 2 * kPointerGrowth);
static_assert(offsetof(RegistrationBody, minWidth) == 96 + 2 * kPointerGrowth);
static_assert(offsetof(RegistrationBody, windowAlignment) == 108 + 2 * kPointerGrowth);
static_assert(offsetof(HostMessage, body) == 12);
static_assert(sizeof(HostMessage::Body) == 112 + 2 * kPointerGrowth);
static_assert(sizeof(HostMessage) == 124 + 2 * kPointerGrowth);

} // namespace halvenor
