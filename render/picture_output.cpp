// PNG pictures: the last frame, or every frame under a number.
#include "files/pending_file.h"
#include "files/released_by.h"
#include "render/output.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <unistd.h>
#include <utility>
#include <vector>

namespace halvenor::render {
namespace {

// `pattern` with its %d, %05d, ... replaced by `number` and %% by a percent sign. What may stand in
// a pattern was settled with the command line.
std::string Numbered(const std::string& pattern, std::uint64_t number) {
  std::string name;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%') {
      name += pattern[i];
      continue;
    }
    ++i;
    if (pattern[i] == '%') {
      name += '%';
      continue;
    }
    const char padding = pattern[i] == '0' ? '0' : ' ';
    std::size_t width = 0;
    for (; pattern[i] != 'd'; ++i)
      width = static_cast<std::size_t>(pattern[i] - '0');
    const std::string digits = std::to_string(number);
    if (digits.size() < width) name.append(width - digits.size(), padding);
    name += digits;
  }
  return name;
}

class PictureOutput : public Output {
public:
  explicit PictureOutput(const Options& options)
      : width_(options.width), height_(options.height), frameBytes_(FrameBytes(options)) {}

  std::span<std::uint8_t> NextFrame() override {
    frame_.resize(frameBytes_);
    return frame_;
  }

protected:
  // Writes the frame into `file`, without its alpha: what was drawn is all there is to see.
  bool Encode(PendingFile& file) {
    if (!file) {
      error_ = file.Problem();
      return false;
    }
    opaque_.resize(frame_.size() / 4 * 3);
    for (std::size_t i = 0, j = 0; i < frame_.size(); i += 4, j += 3)
      std::copy_n(frame_.begin() + static_cast<std::ptrdiff_t>(i), 3,
                  opaque_.begin() + static_cast<std::ptrdiff_t>(j));
    const std::unique_ptr<std::FILE, ReleasedBy<std::fclose>> stream(
        fdopen(dup(file.Descriptor()), "wb"));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width_);
    image.height = static_cast<png_uint_32>(height_);
    image.format = PNG_FORMAT_RGB;
    errno = 0;
    if (stream && png_image_write_to_stdio(&image, stream.get(), 0, opaque_.data(), 0, nullptr) &&
        std::fflush(stream.get()) == 0)
      return true;
    error_ = errno != 0 ? CannotWrite(file.Name(), errno)
                        : "cannot write " + file.Name() + ": " + image.message;
    return false;
  }

  bool Commit(PendingFile& file) {
    if (file.Commit()) return true;
    error_ = file.Problem();
    return false;
  }

private:
  const int width_;
  const int height_;
  const std::size_t frameBytes_;
  std::vector<std::uint8_t> frame_; ///< empty before the first frame
  std::vector<std::uint8_t> opaque_;
};

class LastPictureOutput final : public PictureOutput {
public:
  LastPictureOutput(const Options& options, PendingFile file)
      : PictureOutput(options), file_(std::move(file)) {}

  bool FinishFrame() override { return true; }
  bool Finish() override { return Encode(file_) && Commit(file_); }

private:
  PendingFile file_;
};

class NumberedPicturesOutput final : public PictureOutput {
public:
  NumberedPicturesOutput(const Options& options, PendingFile first)
      : PictureOutput(options), pattern_(options.output), file_(std::move(first)) {}

  bool FinishFrame() override {
    if (number_ > 0)
      file_ = PendingFile::Create(Numbered(pattern_, number_), PendingFile::kUsualMode,
                                  PendingFile::Leftovers::Keep);
    ++number_;
    const bool written = Encode(file_) && Commit(file_);
    file_ = PendingFile();
    return written;
  }
  bool Finish() override { return true; }

private:
  const std::string pattern_;
  std::uint64_t number_ = 0;
  PendingFile file_; ///< of the next frame
};

} // namespace

std::unique_ptr<Output> OpenPictureOutput(const Options& options, std::string& error) {
  const bool numbered = options.outputKind == OutputKind::NumberedPictures;
  PendingFile first = PendingFile::Create(numbered ? Numbered(options.output, 0) : options.output);
  if (!first) {
    error = first.Problem();
    return nullptr;
  }
  if (numbered) return std::make_unique<NumberedPicturesOutput>(options, std::move(first));
  return std::make_unique<LastPictureOutput>(options, std::move(first));
}

} // namespace halvenor::render
