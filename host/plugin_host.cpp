#include "host/plugin_host.h"

#include "host/text.h"
#include "platform/clock.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace halvenor {
namespace {

// The longest name that a registration and a file record hold.
constexpr std::size_t kMaxName = 63;
constexpr std::size_t kFileSpecNameOffset = 6;
static_assert(kFileSpecNameOffset + 1 + kMaxName == kFileSpecSize);

std::string NameIn(const RegistrationBody& body) {
  const std::size_t length = std::min<std::size_t>(body.name[0], kMaxName);
  return FromMacRoman({reinterpret_cast<const char*>(body.name) + 1, length});
}

} // namespace

PluginHost::PluginHost(const PluginModule& module, HostServices& services)
    : module_(module), services_(services) {}

std::unique_ptr<PluginHost> PluginHost::Create(const PluginModule& module, HostServices& services,
                                               std::string& error) {
  std::unique_ptr<PluginHost> host(new PluginHost(module, services));
  PluginInitMessage record{kHostMessageMajorVersion, kHostMessageMinorVersion, host.get(),
                           &OnRequest};
  const Status answer = module.Entry()(message::kInit, &record, nullptr);
  if (host->handler_ && answer == status::kOk) return host;
  error = "the plug-in " + module.Path().string() +
          (answer == status::kOk ? " did not register a visualizer"
                                 : " could not start (status " + std::to_string(answer) + ")");
  return nullptr;
}

PluginHost::~PluginHost() {
  Cleanup();
  // Without a registration there is nothing to clean up.
  if (handler_) module_.Entry()(message::kCleanup, nullptr, nullptr);
}

// --- Requests ---------------------------------------------------------------------------------

Status PluginHost::OnRequest(void* appCookie, FourCharCode code, HostMessage* record) {
  using Answer = Status (PluginHost::*)(HostMessage::Body&);
  static constexpr struct {
    FourCharCode code;
    Answer answer;
  } kAnswers[] = {
      {request::kRegisterVisualPlugin, &PluginHost::Register},
      {request::kGetPluginFileSpec, &PluginHost::FillFileSpec},
      {request::kGetPluginData, &PluginHost::ReadPluginData},
      {request::kSetPluginData, &PluginHost::WritePluginData},
      {request::kSetFullScreen, &PluginHost::SwitchFullScreen},
      {request::kSetFullScreenOptions, &PluginHost::TakeFullScreenOptions},
  };
  for (const auto& row : kAnswers) {
    if (row.code != code) continue;
    if (!appCookie || !record || record->majorVersion != kHostMessageMajorVersion ||
        record->size < sizeof(HostMessage))
      return kBadRequestRecord;
    return (static_cast<PluginHost*>(appCookie)->*row.answer)(record->body);
  }
  return status::kNotHandled;
}

Status PluginHost::Register(HostMessage::Body& body) {
  const RegistrationBody& record = body.registration;
  if (!record.handler || record.name[0] == 0 || handler_) return kBadRequestRecord;
  registration_ = {.name = NameIn(record),
                   .creator = record.creator,
                   .options = record.options,
                   .millisecondsBetweenData = record.timeBetweenData,
                   .waveformChannels = record.waveformChannels,
                   .spectrumChannels = record.spectrumChannels,
                   .minWidth = record.minWidth,
                   .minHeight = record.minHeight,
                   .maxWidth = record.maxWidth,
                   .maxHeight = record.maxHeight};
  refCon_ = record.refCon;
  handler_ = record.handler;
  return status::kOk;
}

// On this platform: the device and file numbers, truncated, then the file's name.
Status PluginHost::FillFileSpec(HostMessage::Body& body) {
  FileSpec* const spec = body.fileSpec.fileSpec;
  if (!spec) return kBadRequestRecord;
  struct stat file {};
  if (stat(module_.Path().c_str(), &file) != 0) return -errno;
  const auto device = static_cast<std::uint16_t>(file.st_dev);
  const auto inode = static_cast<std::uint32_t>(file.st_ino);
  const std::string name = ToMacRoman(module_.Path().filename().string(), kMaxName);
  *spec = {};
  std::memcpy(spec->bytes, &device, sizeof device);
  std::memcpy(spec->bytes + sizeof device, &inode, sizeof inode);
  spec->bytes[kFileSpecNameOffset] = static_cast<std::uint8_t>(name.size());
  std::memcpy(spec->bytes + kFileSpecNameOffset + 1, name.data(), name.size());
  return status::kOk;
}

Status PluginHost::ReadPluginData(HostMessage::Body& body) {
  PluginDataBody& record = body.pluginData;
  record.sizeRead = 0;
  if (!record.data && record.size > 0) return kBadRequestRecord;
  std::size_t sizeRead = 0;
  const Status result = services_.Preferences().Read(
      registration_.name, {static_cast<std::byte*>(record.data), record.size}, sizeRead);
  record.sizeRead = static_cast<std::uint32_t>(sizeRead);
  return result;
}

Status PluginHost::WritePluginData(HostMessage::Body& body) {
  const PluginDataBody& record = body.pluginData;
  if (!record.data && record.size > 0) return kBadRequestRecord;
  return services_.Preferences().Write(registration_.name,
                                       {static_cast<const std::byte*>(record.data), record.size});
}

Status PluginHost::SwitchFullScreen(HostMessage::Body& body) {
  return services_.SetFullScreen(body.fullScreen.fullScreen != 0);
}

Status PluginHost::TakeFullScreenOptions(HostMessage::Body& body) {
  const FullScreenOptionsBody& record = body.fullScreenOptions;
  return services_.SetFullScreenOptions({.minBitDepth = record.minBitDepth,
                                         .maxBitDepth = record.maxBitDepth,
                                         .preferredBitDepth = record.preferredBitDepth,
                                         .desiredWidth = record.desiredWidth,
                                         .desiredHeight = record.desiredHeight});
}

// --- Messages ---------------------------------------------------------------------------------

Status PluginHost::Send(FourCharCode code, VisualMessage& record) {
  if (!initialized_) return status::kNotHandled;
  return handler_(code, &record, refCon_);
}

Status PluginHost::SendBare(FourCharCode code) {
  VisualMessage record{};
  return Send(code, record);
}

Status PluginHost::Init() {
  if (initialized_) return status::kOk;
  VisualMessage record{};
  record.init.majorVersion = kHostMessageMajorVersion;
  record.init.minorVersion = kHostMessageMinorVersion;
  record.init.appCookie = this;
  record.init.appProc = &OnRequest;
  const Status result = handler_(message::kInit, &record, refCon_);
  initialized_ = result == status::kOk || record.init.refCon != nullptr;
  if (initialized_) refCon_ = record.init.refCon;
  return result;
}

Status PluginHost::Cleanup() {
  if (!initialized_) return status::kOk;
  if (shown_) Hide();
  const Status result = SendBare(message::kCleanup);
  initialized_ = false;
  refCon_ = nullptr;
  return result;
}

Status PluginHost::Show(GrafPtr port, const Rect& rect, std::uint32_t options) {
  VisualMessage record{};
  record.window = {port, rect, options};
  UsePort(port);
  const Status result = Send(message::kShow, record);
  shown_ = result == status::kOk;
  if (!shown_) port_ = nullptr;
  return result;
}

Status PluginHost::Hide() {
  shown_ = false;
  port_ = nullptr;
  return SendBare(message::kHide);
}

void PluginHost::UsePort(GrafPtr port) {
  port_ = port;
  if (port_ != nullptr) ::SetFrameUse(port_, frameUse_);
}

void PluginHost::SetFrameUse(HalvenorFrameUse use) {
  frameUse_ = use;
  UsePort(port_);
}

clock::StepResult PluginHost::Step(std::uint64_t time, HalvenorFrameUse use) {
  clock::WaitUntilParked(); // a frame that is still drawn is no part of this
  SetFrameUse(use);
  return clock::Step(time);
}

Status PluginHost::SetWindow(GrafPtr port, const Rect& rect, std::uint32_t options) {
  VisualMessage record{};
  record.window = {port, rect, options};
  if (shown_) UsePort(port);
  return Send(message::kSetWindow, record);
}

Status PluginHost::RenderData(RenderVisualData* data, std::uint32_t timeStamp) {
  VisualMessage record{};
  record.render = {data, timeStamp};
  return Send(message::kRenderData, record);
}

Status PluginHost::SendTrack(FourCharCode code, TrackInfo* track, StreamInfo* stream) {
  VisualMessage record{};
  record.track = {track, stream};
  return Send(code, record);
}

Status PluginHost::Play(TrackInfo* track, StreamInfo* stream) {
  return SendTrack(message::kPlay, track, stream);
}

Status PluginHost::ChangeTrack(TrackInfo* track, StreamInfo* stream) {
  return SendTrack(message::kChangeTrack, track, stream);
}

Status PluginHost::Pause() {
  return SendBare(message::kPause);
}
Status PluginHost::Unpause() {
  return SendBare(message::kUnpause);
}
Status PluginHost::Stop() {
  return SendBare(message::kStop);
}

bool PluginHost::Key(char character, bool repeat) {
  constexpr std::uint64_t kNanosecondsPerTick = 1'000'000'000 / 60;
  EventRecord event{};
  event.what = repeat ? kKeyRepeatEvent : kKeyDownEvent;
  event.message = static_cast<unsigned char>(character);
  event.when = static_cast<std::uint32_t>(clock::Now() / kNanosecondsPerTick);
  VisualMessage record{};
  record.event.event = &event;
  return Send(message::kEvent, record) == status::kOk;
}

Status PluginHost::Idle() {
  if (!(registration_.options & kWantsIdleMessages)) return status::kNotHandled;
  return SendBare(message::kIdle);
}

Status PluginHost::Configure() {
  if (!(registration_.options & kWantsConfigure)) return status::kNotHandled;
  return SendBare(message::kConfigure);
}

} // namespace halvenor
