// Any stored block, any messages in any order: the handler over the stand-ins, frames included.
// The first 116 bytes of an input are the block, the rest are messages and what they carry.
#include "platform/clock.h"
#include "platform/debug_log.h"
#include "tests/shell/test_host.h"
#include "tests/stand_ins/call_log.h"
#include "tests/stand_ins/offscreen_port.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace halvenor;

namespace {

class Input {
public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  [[nodiscard]] bool IsEmpty() const { return left_ == 0; }
  void Take(void* target, std::size_t size) {
    std::memset(target, 0, size);
    const std::size_t taken = std::min(size, left_);
    std::memcpy(target, data_, taken);
    data_ += taken;
    left_ -= taken;
  }
  template <typename Value>
  Value Take() {
    Value value;
    Take(&value, sizeof value);
    return value;
  }

private:
  const std::uint8_t* data_;
  std::size_t left_;
};

void SendOne(TestHost& host, HalvenorPort& port, Input& input) {
  static constexpr FourCharCode kPlain[] = {message::kHide,      message::kPause, message::kUnpause,
                                            message::kStop,      message::kIdle,  message::kUpdate,
                                            message::kConfigure, Code("what")};
  const auto selector = input.Take<std::uint8_t>();
  switch (selector % 8) {
  case 0:
    host.Show(&port, selector >> 7);
    break;
  case 1:
    port.bounds = input.Take<Rect>();
    host.SendWindow(message::kSetWindow, &port, input.Take<Rect>(), selector >> 7);
    break;
  case 2: {
    const auto data = std::make_unique<RenderVisualData>();
    const auto seed = input.Take<std::uint32_t>();
    std::memset(data.get(), static_cast<int>(seed & 0xFF), sizeof *data);
    data->numSpectrumChannels = static_cast<std::uint8_t>(seed >> 8);
    for (int times = 0; times < 1 + selector / 8; ++times)
      host.SendData((seed >> 16) % 16 == 0 ? nullptr : data.get());
    break;
  }
  case 3: {
    const auto track = std::make_unique<TrackInfo>();
    const auto stream = std::make_unique<StreamInfo>();
    track->bytes[kTrackTitleOffset] = input.Take<std::uint8_t>();
    input.Take(track->bytes + kTrackTitleOffset + 1, 16);
    track->bytes[kTrackArtistOffset] = 255;
    host.SendTracks(selector & 8 ? message::kPlay : message::kChangeTrack, track.get(),
                    selector & 16 ? stream.get() : nullptr);
    break;
  }
  case 4:
    host.SendEvent(input.Take<std::uint16_t>() % 8, input.Take<std::uint32_t>());
    break;
  case 5:
    host.Send(message::kCleanup);
    host.Init();
    break;
  case 6:
    clock::Step(clock::Now() + input.Take<std::uint32_t>() * std::uint64_t{1000});
    break;
  default:
    host.Send(kPlain[selector / 8 % std::size(kPlain)]);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stand_ins::Reset();
  stand_ins::SetSilent(true);
  debug_log::SetReceiver([](void*, std::string_view) {}, nullptr);
  clock::UseStepped(1000000000);
  {
    Input input(data, size);
    HalvenorPort port = stand_ins::OffscreenPort(320, 240); // outlives what is shown in it
    TestHost host;
    host.storedBlock.resize(sizeof(Settings));
    input.Take(host.storedBlock.data(), sizeof(Settings));
    host.inside[request::kSetFullScreen] = [&host] { host.Send(message::kHide); };
    host.Init();
    host.Show(&port);
    for (int messages = 0; messages < 24 && !input.IsEmpty(); ++messages)
      SendOne(host, port, input);
  }
  for (const std::string& misuse : stand_ins::Misuses()) {
    std::fprintf(stderr, "misuse: %s\n", misuse.c_str());
    std::abort();
  }
  return 0;
}
