#include "render/output.h"

namespace halvenor::render {

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
