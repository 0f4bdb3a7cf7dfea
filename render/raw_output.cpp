// Raw RGBA frames, to a file or to the program's standard output.
#include "render/output.h"
#include "render/pending_file.h"

#include <optional>
#include <unistd.h>
#include <utility>
#include <vector>

namespace halvenor::render {
namespace {

class RawOutput final : public Output {
public:
  RawOutput(PendingFile file, std::size_t frameBytes)
      : file_(std::move(file)), frameBytes_(frameBytes) {}

  std::span<std::uint8_t> NextFrame() override {
    frame_.resize(frameBytes_);
    return frame_;
  }
  bool FinishFrame() override { return file_.Write(std::as_bytes(std::span(frame_)), error_); }
  bool Finish() override { return file_.Commit(error_); }

private:
  PendingFile file_;
  const std::size_t frameBytes_;
  std::vector<std::uint8_t> frame_; ///< empty before the first frame
};

} // namespace

std::unique_ptr<Output> OpenRawOutput(const Options& options, int frames, std::string& error) {
  std::optional<PendingFile> file;
  if (options.output != "-") {
    file = PendingFile::Create(options.output, error);
  } else if (isatty(frames)) {
    error = "raw frames are nothing for a terminal: send standard output to a file or a program";
  } else {
    file = PendingFile::Adopt(frames, "standard output");
  }
  if (!file) return nullptr;
  return std::make_unique<RawOutput>(std::move(*file), FrameBytes(options));
}

} // namespace halvenor::render
