#include "render/output.h"

#include "files/pending_file.h"
#include "render/stop_signals.h"

#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace halvenor::render {
namespace {

// What every user may ask for.
constexpr int kPipeBytes = 1 << 20;

// Raw RGBA frames, to a file or to the program's standard output.
class RawOutput final : public Output {
public:
  RawOutput(PendingFile file, std::size_t frameBytes)
      : file_(std::move(file)), frameBytes_(frameBytes) {}

  std::span<std::uint8_t> NextFrame() override {
    frame_.resize(frameBytes_);
    return frame_;
  }
  bool FinishFrame() override {
    const StopSignals::Interruptible interruptible;
    return Done(file_.Write(std::as_bytes(std::span(frame_)), StopSignals::HaveArrived));
  }
  bool Finish() override { return Done(file_.Commit()); }

private:
  bool Done(bool good) {
    if (!good) error_ = file_.Problem();
    return good;
  }

  PendingFile file_;
  const std::size_t frameBytes_;
  std::vector<std::uint8_t> frame_; ///< empty before the first frame
};

std::unique_ptr<Output> OpenRawOutput(const Options& options, int frames, std::string& error) {
  const bool isStandardOutput = options.output == "-";
  if (isStandardOutput && isatty(frames)) {
    error = "a terminal cannot show raw frames: send standard output to a file or a program";
    return nullptr;
  }
  PendingFile file = isStandardOutput ? PendingFile::Adopt(frames, "standard output")
                                      : PendingFile::Create(options.output);
  // Where it is a pipe, more of a picture fits in at once.
  if (file) fcntl(file.Descriptor(), F_SETPIPE_SZ, kPipeBytes);
  if (file) return std::make_unique<RawOutput>(std::move(file), FrameBytes(options));
  error = file.Problem();
  return nullptr;
}

} // namespace

std::unique_ptr<Output> OpenOutput(const Options& options, bool hasSound, int frames,
                                   std::string& error) {
  switch (options.outputKind) {
  case OutputKind::RawFrames:
    return OpenRawOutput(options, frames, error);
  case OutputKind::LastPicture:
  case OutputKind::NumberedPictures:
    return OpenPictureOutput(options, error);
  case OutputKind::Mp4:
  case OutputKind::WebM:
  case OutputKind::Matroska:
    return OpenVideoOutput(options, hasSound, error);
  }
  return nullptr;
}

} // namespace halvenor::render
